// The settings window on the simulated device: start-up and every action of the user. The requests of each action,
// and what happens when they fail, are in faults/.

#include "CustomSliderCell.h"
#include "SliderGeometry.h"
#include "WindowTest.h"
#include "WireText.h"

namespace {

const QColor kLight = QColor::fromRgbF(1, 1, 1, 0.8F);

/// An action of the user.
struct Action {
    const char* control; ///< has the focus before
    const char* words;   ///< those unknown to `act` are keys; after "hold+" a key repeats three times
    const char* follows; ///< "!" a write to the device, "o" the menu opens, "c" it closes
    const char* held;    ///< a setting in the device afterwards
};

const char* const kMicrophone = "SliderMicrophoneVolume";
const char* const kHeadphone = "SliderHeadphoneVolume";
const char* const kBoth = "SliderHmdiAuxVolume";
const char* const kOn = "HdcpOnButton";
const char* const kOff = "HdcpOffButton";
const char* const kPopUp = "PopupRecordQuality";

const std::vector<Action> kActions{{kMicrophone, "Right", "!", "microphone 177"},
    {kHeadphone, "Right", "!", "headphone 129"}, {kHeadphone, "PgUp", "!", "headphone 144"},
    {kHeadphone, "click250", "!", "headphone 144"}, {kHeadphone, "press128 move50 release50", "!", "headphone 50"},
    {kHeadphone, "wheel", "!", "headphone 125"}, {kHeadphone, "value7", "!", "headphone 7"},
    {kHeadphone, "hold+Left", "!!!!", "headphone 124"}, {kHeadphone, "hold+PgDown", "!!!!", "headphone 64"},
    {kBoth, "Left", "!!", "HDMI 254, AUX 254"},
    // The second click is one on the selected button.
    {kOn, "click click", "!!", "HDCP 1"}, {kOn, "toggle Right", "!!", "HDCP 0"}, {kOn, "leave", "!", "HDCP 1"},
    {kOff, "hold+Alt+N", "!", "HDCP 1"}, {kHeadphone, "hold+Alt+F", "!", "HDCP 0"}, {kOn, "hold+Space", "!", "HDCP 1"},
    // Tab goes to the selected button.
    {kBoth, "Tab Left Shift+Tab Tab Right", "!!", "HDCP 0"}, {"LabelFwVersion", "Shift+Tab Left", "!", "HDCP 1"},
    {kPopUp, "click move1 move2 click2 press release0 Esc", "oc!oc", "H.264 2"},
    {kPopUp, "press move1 move0 release0", "oc!", "H.264 0"}, {kPopUp, "Space Up Return", "oc!", "H.264 0"},
    {kPopUp, "Space Enter", "oc!", "H.264 1"}, {kPopUp, "Down", "!", "H.264 2"}, {kPopUp, "Up", "!", "H.264 0"},
    {kPopUp, "Home", "!", "H.264 0"}, {kPopUp, "End", "!", "H.264 2"}, {kPopUp, "L", "!", "H.264 2"},
    {kPopUp, "Down Down", "!", "H.264 2"}, {kPopUp, "Home hold+Down", "!!", "H.264 1"},
    {kPopUp, "Space Down Esc H", "oc!", "H.264 0"}, {kPopUp, "Space choose0", "oc!", "H.264 0"},
    {kPopUp, "choose1", "!", "H.264 1"}, {kPopUp, "Space Up Esc", "oc", "H.264 1"},
    {kPopUp, "hold+Space Esc", "oc", "H.264 1"}, {kPopUp, "F4 Esc", "oc", "H.264 1"},
    {kPopUp, "Space Up elsewhere", "oc", "H.264 1"}, {kPopUp, "End late late", "!!!", "H.264 0"},
    {kPopUp, "Space Up close", "oc", "H.264 1"}, {kPopUp, "Space black Esc", "oc", "H.264 1"},
    {kPopUp, "wheel Space wheel Esc", "oc", "H.264 1"}, {kPopUp, "right", "", "H.264 1"}, {kPopUp, "Z", "", "H.264 1"}};

/// Turns of the wheel, or of the fingers on a touchpad.
struct Turns {
    QList<int> changes; ///< of a slider with steps of 2 and pages of 16
    QList<QPoint> angles;
    QPoint pixels = {};
    Qt::KeyboardModifiers modifiers = {};
    bool inverted = false; ///< the event, as for natural scrolling
};

const std::vector<Turns> kTurns{{{-6, -6, -6}, {3, {0, -120}}}, {QList<int>(6, 1), {15, {0, 8}}, {0, 3}},
    {{-1, -1}, QList<QPoint>(2, {0, 8}) + QList<QPoint>(9, {0, -8})}, {{1, 1}, {10, {}}, {0, 2}}, // only pixels
    {{6}, {{-120, 0}}}, {{6}, {{120, 120}}}, {{8, 8}, {2, {0, 60}}, {}, Qt::ControlModifier},
    {{-6}, {{0, 120}}, {}, {}, true}};

void beBlackOnLight(const CustomPopUpButton& popUp) {
    QCOMPARE(popUp.attributedTitle(2).colorAt(0), QColor(Qt::black));
    QCOMPARE(popUp.menu()->actionGeometry(popUp.menu()->actions()[2]), QRect(1, 57, 158, 28));
    const QImage row = rendered(*popUp.menu(), 1, {8, 57, 52, 28});
    const auto shades = counted(row);
    const auto isDark = [](QRgb color) { return qGray(color) < 100; };
    QVERIFY(qGray(row.pixel(0, 0)) > 200 && std::any_of(shades.keyBegin(), shades.keyEnd(), isDark));
}

/// Presses keys together. A held one repeats as window systems report it.
void pressKeys(QKeyCombination keys, bool held) {
    const QString text = keys.key() < 0x80 ? QString(QChar(char16_t(keys.key()))).toLower() : QString();
    const auto send = [&](bool press, bool repeat) {
        QWidget* menu = QApplication::activePopupWidget();
        QTest::simulateEvent(
            menu ? menu : QApplication::focusWidget(), press, keys.key(), keys.keyboardModifiers(), text, repeat);
    };
    send(true, false);
    for (int repeats = 0; held && repeats < 3; ++repeats) {
        send(false, true);
        send(true, true);
    }
    send(false, false);
}

/// Presses a key that repeats late, as on X11: the toolkit recognises no repeat in the second press, which has the time
/// of the release.
void pressLate(int key) {
    static quint64 time = 0;
    time += 30; // soon after the one before
    for (const auto& [type, at] : {std::pair(QEvent::KeyPress, time - 1), {QEvent::KeyRelease, time},
             {QEvent::ShortcutOverride, time}, {QEvent::KeyPress, time}}) {
        QKeyEvent event(type, key, {});
        event.setTimestamp(at);
        event.ignore();
        QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
        QVERIFY(event.isAccepted() || type != QEvent::ShortcutOverride);
    }
}

void act(const SettingsWindow& settings, QWidget& control, const QString& word) {
    auto& popUp = settings.control<CustomPopUpButton>(kPopUp);
    QMenu& menu = *popUp.menu();
    QWidget& target = menu.isVisible() ? menu : control;
    const QString name = QString(word).remove(QRegularExpression("\\d+$"));
    const int number = word.mid(name.size()).toInt(); // a row of the menu or a value of the slider
    const auto* slider = dynamic_cast<const QSlider*>(&control);
    const QPoint place = menu.isVisible() ? menu.actionGeometry(menu.actions()[number]).center()
        : slider                          ? knobRect(knobDistance(slider->width()) * number / 255).center()
                                          : QPoint(12, control.height() / 2);
    const auto accessible = [](QWidget& of) { return QAccessible::queryAccessibleInterface(&of); };
    if (name == "click") return QTest::mouseClick(&target, Qt::LeftButton, {}, place);
    if (name == "right") return QTest::mouseClick(&target, Qt::RightButton);
    if (name == "press") return QTest::mousePress(&target, Qt::LeftButton, {}, place);
    if (name == "move") return QTest::mouseMove(&target, place, 9);
    if (name == "release") return QTest::mouseRelease(&target, Qt::LeftButton, {}, place, 9);
    if (name == "elsewhere") return QTest::mouseClick(&menu, Qt::LeftButton, {}, QPoint(-40, 300));
    if (name == "wheel") return (void)turnWheel(target, {0, -120});
    if (name == "value") return accessible(control)->valueInterface()->setCurrentValue(number);
    if (name == "choose")
        return accessible(menu)->child(number)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    if (name == "toggle")
        return accessible(control)->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    if (name == "late") return pressLate(Qt::Key_Up);
    if (name == "close") return (void)menu.windowHandle()->close(); // as the window system does
    if (name == "black") return beBlackOnLight(popUp);
    if (name == "leave") { // the click ends a tenth of a second later, after the focus has moved
        dynamic_cast<QRadioButton&>(control).animateClick();
        control.clearFocus();
        return QTest::qWait(150);
    }
    const QKeyCombination keys = QKeySequence(QString(word).remove("hold+"))[0];
    QVERIFY2(keys.key() != Qt::Key_unknown, qPrintable(word));
    pressKeys(keys, word.startsWith("hold+"));
}

} // namespace

class SettingsWindowTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        setUpApplication(*qApp);
        QApplication::setDoubleClickInterval(5); // so long a press that opens a list is no click in it
    }
    void init() { TestHost::reset(); }

    // The fault cells compare the window at start-up.
    void startUpCanBeRepeated() {
        const SettingsWindow settings;
        auto& popUp = settings.control<CustomPopUpButton>(kPopUp);
        settings.view().setRepresentedObject(5);
        TestHost::take();
        settings.view().viewDidLoad();
        QCOMPARE(TestHost::take().front(), "close"); // the device, before it is opened again
        QCOMPARE(settings.view().representedObject(), 5);
        QCOMPARE(popUp.menu()->actions().size(), 3);
        QVERIFY(popUp.arrowPosition() == CustomPopUpButton::ArrowPosition::None);
        for (const char* name : {kOn, kOff})
            QCOMPARE(settings.control<AttributedRadioButton>(name).attributedTitle().colorAt(0), kLight);
        QCOMPARE(settings.control<QRadioButton>(kOff).text(), "O&ff"); // with its mnemonic
        device().settings[8] = 0x31;                                   // a level without a title
        settings.view().viewDidLoad();
        QCOMPARE(settings.control("QualityImage").accessibleDescription(), "High");
    }

    void everyActionOfTheUser() {
        for (const Action& row : kActions) {
            TestHost::reset();
            const SettingsWindow settings;
            auto& popUp = settings.control<CustomPopUpButton>(kPopUp);
            QString followed;
            connect(popUp.menu(), &QMenu::aboutToShow, [&] { followed += popUp.menu()->isVisible() ? "late" : "o"; });
            connect(popUp.menu(), &QMenu::aboutToHide, [&] { followed += 'c'; });
            device().onRequest = [&](const RecordedRequest& request) { followed += request.isGet() ? "" : "!"; };
            settings.control(row.control).setFocus();
            for (const QString& word : QString(row.words).split(' ')) {
                act(settings, settings.control(row.control), word);
                QCoreApplication::processEvents(); // that the toolkit has posted
            }
            const QWidget& window = settings.window();
            const QImage seen = window.screen()->grabWindow(window.winId()).toImage(); // at 200 % a quarter
            QCOMPARE(seen, rendered(window, window.devicePixelRatio()).copy(seen.rect()));
            QCOMPARE(QString(row.words) + ": " + followed, QString(row.words) + ": " + row.follows);
            QVERIFY2(settingsText(device()).find(row.held) != std::string::npos, row.words);
            const auto shown = [&](auto name, auto key) { return settings.control(name).property(key).toInt(); };
            const SimulatedDevice& held = device();
            QCOMPARE((QList<int>{shown(kPopUp, "currentIndex"), shown(kOn, "checked"), shown(kMicrophone, "value"),
                         shown(kHeadphone, "value"), shown(kBoth, "value")}),
                (QList<int>{held.settings[8] >> 4, held.settings[9], held.audio[3], held.audio[5], held.audio[1]}));
            QCOMPARE(settings.control("QualityImage").accessibleDescription(), popUp.titleOfSelectedItem());
            QVERIFY(!popUp.menu()->isVisible() && popUp.attributedTitle(2).colorAt(0) == kLight);
        }
    }

    void wheelAddsUp() {
        for (const Turns& row : kTurns) {
            CustomSliderCell slider(nullptr);
            slider.setRange(0, 255);
            slider.setSingleStep(2);
            slider.setPageStep(16);
            slider.setValue(100);
            QList<int> changes;
            connect(&slider, &QSlider::valueChanged, [&](int value) {
                changes << value - 100;
                const QSignalBlocker shown(slider);
                slider.setValue(100); // as the device reports
            });
            for (const QPoint angle : row.angles)
                QVERIFY(turnWheel(slider, angle, row.pixels, row.modifiers, row.inverted));
            QCOMPARE(changes, row.changes);
        }
    }

    void valuesOutOfRangeStop() {
        const SettingsWindow settings;
        auto& slider = settings.control<QSlider>(kHeadphone);
        const QSignalBlocker blocker(slider);
        slider.setRange(-5, 300);
        for (const auto& [volume, end] : {std::pair(-1, "fatal SliderHeadphoneVolume: -1 does not fit in 8 bits"),
                 {256, "fatal SliderHeadphoneVolume: 256 does not fit in 8 bits"}, {255, ""}}) {
            slider.setValue(volume);
            QCOMPARE(endOf([&] { settings.view().ChangeHeadphoneVolume(nullptr); }), end);
        }
        settings.control<CustomPopUpButton>(kPopUp).selectItemAtIndex(-1);
        QCOMPARE(endOf([&] { settings.view().ChooseRecordQuality(nullptr); }),
            "fatal PopupRecordQuality: -1 does not fit in 8 bits");
        settings.view().DeviceCtrl.reset();
        QCOMPARE(endOf([&] { settings.view().TurnOnHdcp(nullptr); }), "fatal DeviceCtrl is absent");
    }
};

QTEST_MAIN(SettingsWindowTest)
#include "SettingsWindowTest.moc"
