// Owns what the settings window writes and shows after each action of the user, and its start-up.

#include "CustomSliderCell.h"
#include "SliderGeometry.h"
#include "WindowTest.h"
#include "WireText.h"

namespace {

const QColor kLight = QColor::fromRgbF(1, 1, 1, 0.8F);

const char* const kMicrophone = "SliderMicrophoneVolume";
const char* const kHeadphone = "SliderHeadphoneVolume";
const char* const kBoth = "SliderHmdiAuxVolume";
const char* const kOn = "HdcpOnButton";
const char* const kOff = "HdcpOffButton";
const char* const kPopUp = "PopupRecordQuality";
const char* const kFirmware = "LabelFwVersion";

/// Operates the control that has the focus, or the open menu.
class Hand {
public:
    explicit Hand(const SettingsWindow& settings) : m_settings(settings) {}

    /// Presses keys together.
    void press(QKeyCombination keys) { send(keys, 0); }
    /// Holds keys until they have repeated three times.
    void hold(QKeyCombination keys) { send(keys, 3); }
    /// The repeats wait while the program is busy, as on X11.
    void holdWhileBusy(Qt::Key key);

    void click() { QTest::mouseClick(&focused(), Qt::LeftButton, {}, QPoint(12, focused().height() / 2)); }
    void clickAt(int value) { QTest::mouseClick(&focused(), Qt::LeftButton, {}, knobAt(value)); }
    void drag(int from, int to) {
        QTest::mousePress(&focused(), Qt::LeftButton, {}, knobAt(from));
        QTest::mouseMove(&focused(), knobAt(to));
        QTest::mouseRelease(&focused(), Qt::LeftButton, {}, knobAt(to));
    }
    void turnWheel() { ::turnWheel(focused(), {0, -120}); }
    /// The click ends a tenth of a second later, when the focus is elsewhere.
    void clickAndLeave() {
        dynamic_cast<QRadioButton&>(focused()).animateClick();
        focused().clearFocus();
        QTest::qWait(150);
    }
    void closeMenuAsTheWindowSystem() { menu().windowHandle()->close(); }

    // By assistive technology
    void setValue(int value) { accessible(focused())->valueInterface()->setCurrentValue(value); }
    void toggle() { accessible(focused())->actionInterface()->doAction(QAccessibleActionInterface::toggleAction()); }
    void doOnItem(int index, const QString& action = QAccessibleActionInterface::pressAction()) {
        accessible(menu())->child(index)->actionInterface()->doAction(action);
    }
    void doOnPopUp(const QString& action) { accessible(popUp())->actionInterface()->doAction(action); }

    [[nodiscard]] CustomPopUpButton& popUp() { return m_settings.control<CustomPopUpButton>(kPopUp); }
    [[nodiscard]] QMenu& menu() { return *popUp().menu(); }

private:
    static QAccessibleInterface* accessible(QWidget& control) {
        return QAccessible::queryAccessibleInterface(&control);
    }
    static QWidget& focused() { return *QApplication::focusWidget(); }
    static QPoint knobAt(int value) { return knobRect(knobDistance(focused().width()) * value / 255).center(); }
    void send(QKeyCombination keys, int repeats);

    const SettingsWindow& m_settings;
};

void Hand::send(QKeyCombination keys, int repeats) {
    const QString text = keys.key() < 0x80 ? QString(QChar(char16_t(keys.key()))).toLower() : QString();
    const auto event = [&](bool isPress, bool isRepeat) {
        QWidget* menu = QApplication::activePopupWidget();
        QTest::simulateEvent(menu ? menu : &focused(), isPress, keys.key(), keys.keyboardModifiers(), text, isRepeat);
    };
    event(true, false);
    for (int repeat = 0; repeat < repeats; ++repeat) {
        event(false, true);
        event(true, true);
    }
    event(false, false);
}

void Hand::holdWhileBusy(Qt::Key key) {
    const auto pressAt = [key](quint64 time) {
        QKeyEvent event(QEvent::KeyPress, key, {}, {}, time > 100);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(&focused(), &event);
    };
    pressAt(100);
    QTest::qSleep(300); // the requests to a slow device
    for (const quint64 repeatedAt : {130, 160, 190}) pressAt(repeatedAt);
    pressAt(390); // in time
}

} // namespace

class SettingsWindowTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
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
        QCOMPARE(popUp.itemTitles().size(), 3);
        QVERIFY(popUp.arrowPosition() == CustomPopUpButton::ArrowPosition::None);
        for (const char* name : {kOn, kOff})
            QCOMPARE(settings.control<AttributedRadioButton>(name).attributedTitle().colorAt(0), kLight);
        QCOMPARE(settings.control<QRadioButton>(kOff).text(), "O&ff"); // with its mnemonic
    }

    void aLevelWithoutATitleCanBeReplaced() {
        device().settings[8] = 0x31;
        const SettingsWindow settings;
        Hand hand(settings);
        QCOMPARE(hand.popUp().indexOfSelectedItem(), -1);
        QCOMPARE(settings.control("QualityImage").accessibleDescription(), "High");
        hand.press(Qt::Key_Space);
        hand.press(Qt::Key_End);
        hand.press(Qt::Key_Return);
        QCOMPARE(device().settings[8], 0x21);
    }

    void titlesAreBlackWhileTheMenuIsOpen() {
        const SettingsWindow settings;
        Hand hand(settings);
        hand.press(Qt::Key_Space);
        QCOMPARE(hand.popUp().attributedTitle(2).colorAt(0), QColor(Qt::black));
        hand.press(Qt::CTRL | Qt::Key_Q);
        QVERIFY(!hand.menu().isVisible());
        QCOMPARE(hand.popUp().attributedTitle(2).colorAt(0), kLight);
    }

    void everyAction_data();
    void everyAction() {
        QFETCH(QString, control);
        QFETCH(std::function<void(Hand&)>, act);
        QFETCH(int, writes);
        QFETCH(QString, setting);
        const SettingsWindow settings;
        int written = 0;
        device().onRequest = [&](const RecordedRequest& request) { written += request.isGet() ? 0 : 1; };
        settings.control(qPrintable(control)).setFocus();
        Hand hand(settings);
        act(hand);
        QCoreApplication::processEvents(); // that the toolkit has posted
        QCOMPARE(written, writes);
        const QRegularExpression words("\\b" + QRegularExpression::escape(setting) + "\\b");
        QVERIFY(QString::fromStdString(settingsText(device())).contains(words));
        windowShowsTheDevice(settings);
        screenShowsTheWindow(settings.window());
        QVERIFY(!hand.menu().isVisible());
    }

    void wheelAddsUp_data();
    void wheelAddsUp() {
        QFETCH(std::function<void(QSlider&)>, turn);
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
        turn(slider);
        QTEST(changes, "changes");
    }

    void valuesOutOfRangeStop() {
        const SettingsWindow settings;
        auto& slider = settings.control<QSlider>(kHeadphone);
        const auto end = [&](int volume) {
            const QSignalBlocker blocker(slider);
            slider.setRange(-5, 300);
            slider.setValue(volume);
            return endOf([&] { settings.view().ChangeHeadphoneVolume(nullptr); });
        };
        QCOMPARE(end(-1), "fatal SliderHeadphoneVolume: -1 does not fit in 8 bits");
        QCOMPARE(end(256), "fatal SliderHeadphoneVolume: 256 does not fit in 8 bits");
        QCOMPARE(end(255), "");
        settings.control<CustomPopUpButton>(kPopUp).selectItemAtIndex(-1);
        QCOMPARE(endOf([&] { settings.view().ChooseRecordQuality(nullptr); }),
            "fatal PopupRecordQuality: -1 does not fit in 8 bits");
        settings.view().DeviceCtrl.reset();
        QCOMPARE(endOf([&] { settings.view().TurnOnHdcp(nullptr); }), "fatal DeviceCtrl is absent");
    }

private:
    static void windowShowsTheDevice(const SettingsWindow& settings) {
        const auto& held = device();
        QCOMPARE(settings.control<CustomPopUpButton>(kPopUp).indexOfSelectedItem(), held.settings[8] >> 4);
        QCOMPARE(settings.control<QRadioButton>(kOn).isChecked(), held.settings[9] == 1);
        QCOMPARE(settings.control<QRadioButton>(kOff).isChecked(), held.settings[9] != 1);
        QCOMPARE(settings.control<QSlider>(kMicrophone).value(), held.audio[3]);
        QCOMPARE(settings.control<QSlider>(kHeadphone).value(), held.audio[5]);
        QCOMPARE(settings.control<QSlider>(kBoth).value(), held.audio[1]);
        QCOMPARE(settings.control("QualityImage").accessibleDescription(),
            settings.control<CustomPopUpButton>(kPopUp).titleOfSelectedItem());
    }
    /// Each change was repainted.
    static void screenShowsTheWindow(QWidget& window) {
        const auto seen = [&] { return window.screen()->grabWindow(window.winId()).toImage(); }; // at 200 % a quarter
        QTRY_COMPARE(seen(), rendered(window, window.devicePixelRatio()).copy(seen().rect()));
    }
};

void SettingsWindowTest::everyAction_data() {
    QTest::addColumn<QString>("control");
    QTest::addColumn<std::function<void(Hand&)>>("act");
    QTest::addColumn<int>("writes");
    QTest::addColumn<QString>("setting");
    const auto row = [](const char* name, const char* control, const std::function<void(Hand&)>& act, int writes,
                         const char* setting) { QTest::newRow(name) << control << act << writes << setting; };
    const auto press = [](QKeyCombination keys) { return [keys](Hand& hand) { hand.press(keys); }; };
    const auto hold = [](QKeyCombination keys) { return [keys](Hand& hand) { hand.hold(keys); }; };
    using Keys = Qt::Key;

    row("an arrow moves the microphone", kMicrophone, press(Keys::Key_Right), 1, "microphone 177");
    row("an arrow moves HDMI and AUX", kBoth, press(Keys::Key_Left), 2, "HDMI 254, AUX 254");
    row("a page key moves a sixteenth", kHeadphone, press(Keys::Key_PageUp), 1, "headphone 144");
    row(
        "a click beside the knob moves a page", kHeadphone, [](Hand& hand) { hand.clickAt(250); }, 1, "headphone 144");
    row(
        "a drag moves the knob", kHeadphone, [](Hand& hand) { hand.drag(128, 50); }, 1, "headphone 50");
    row(
        "the wheel moves three steps", kHeadphone, [](Hand& hand) { hand.turnWheel(); }, 1, "headphone 125");
    row(
        "assistive technology sets a volume", kHeadphone, [](Hand& hand) { hand.setValue(7); }, 1, "headphone 7");
    row("a held arrow repeats", kHeadphone, hold(Keys::Key_Left), 4, "headphone 124");
    const auto holdWhileBusy = [](Hand& hand) { hand.holdWhileBusy(Qt::Key_Right); };
    row("repeats that arrive late are dropped", kHeadphone, holdWhileBusy, 2, "headphone 130");

    const auto clickTwice = [](Hand& hand) {
        hand.click();
        hand.click();
    };
    row("a click on the selected button writes too", kOn, clickTwice, 2, "HDCP 1");
    row(
        "a click ends after the focus has moved", kOn, [](Hand& hand) { hand.clickAndLeave(); }, 1, "HDCP 1");
    row(
        "assistive technology selects a button", kOn, [](Hand& hand) { hand.toggle(); }, 1, "HDCP 1");
    row("a held mnemonic is one press", kHeadphone, hold(Qt::ALT | Qt::Key_N), 1, "HDCP 1");
    row("a mnemonic of the selected button writes", kHeadphone, press(Qt::ALT | Qt::Key_F), 1, "HDCP 0");
    row("a held Space is one press", kOn, hold(Keys::Key_Space), 1, "HDCP 1");
    const auto tabAndArrow = [](Hand& hand) {
        hand.press(Qt::Key_Tab);
        hand.press(Qt::Key_Left);
    };
    row("Tab goes to the selected button", kBoth, tabAndArrow, 1, "HDCP 1");
    const auto backTabAndArrow = [](Hand& hand) {
        hand.press(Qt::SHIFT | Qt::Key_Tab);
        hand.press(Qt::Key_Left);
    };
    row("Shift+Tab goes to the selected button", kFirmware, backTabAndArrow, 1, "HDCP 1");

    row("an arrow chooses a level", kPopUp, press(Keys::Key_Down), 1, "H.264 2");
    const auto chooseInMenu = [](Hand& hand) {
        hand.press(Qt::Key_Space);
        hand.press(Qt::Key_Up);
        hand.press(Qt::Key_Return);
    };
    row("Return chooses a level in the menu", kPopUp, chooseInMenu, 1, "H.264 0");
    const auto chooseAgain = [](Hand& hand) {
        hand.press(Qt::Key_Space);
        hand.press(Qt::Key_Return);
    };
    row("the same level can be chosen again", kPopUp, chooseAgain, 1, "H.264 1");
    const auto closeByWindowSystem = [](Hand& hand) {
        hand.press(Qt::Key_Space);
        hand.press(Qt::Key_Up);
        hand.closeMenuAsTheWindowSystem();
    };
    row("a menu closed by the window system chooses nothing", kPopUp, closeByWindowSystem, 0, "H.264 1");
    row(
        "assistive technology chooses with the menu closed", kPopUp, [](Hand& hand) { hand.doOnItem(2); }, 1,
        "H.264 2");
    const auto chooseInOpenMenu = [](Hand& hand) {
        hand.doOnPopUp(QAccessibleActionInterface::showMenuAction());
        hand.doOnItem(0);
    };
    row("assistive technology chooses in the menu", kPopUp, chooseInOpenMenu, 1, "H.264 0");
    const auto doUnknown = [](Hand& hand) {
        hand.doOnPopUp("Jump");
        hand.doOnItem(0, "Jump");
    };
    row("an unknown action of assistive technology does nothing", kPopUp, doUnknown, 0, "H.264 1");
    const auto useDisabled = [](Hand& hand) {
        hand.popUp().setEnabled(false);
        hand.doOnPopUp(QAccessibleActionInterface::showMenuAction());
        hand.doOnItem(0);
    };
    row("a disabled pop-up neither opens nor chooses", kPopUp, useDisabled, 0, "H.264 1");
}

void SettingsWindowTest::wheelAddsUp_data() {
    QTest::addColumn<std::function<void(QSlider&)>>("turn");
    QTest::addColumn<QList<int>>("changes");
    const auto row = [](const char* name, int times, QPoint angle, const QList<int>& changes, QPoint pixels = {},
                         Qt::KeyboardModifiers modifiers = {}, bool isInverted = false) {
        const std::function<void(QSlider&)> turn = [=](QSlider& slider) {
            for (int i = 0; i < times; ++i) QVERIFY(turnWheel(slider, angle, pixels, modifiers, isInverted));
        };
        QTest::newRow(name) << turn << changes;
    };
    row("notches", 3, {0, -120}, {-6, -6, -6});
    row("a touchpad's small angles", 15, {0, 8}, QList<int>(6, 1), {0, 3});
    row("only pixels", 10, {}, {1, 1}, {0, 2});
    row("to the side", 1, {-120, 0}, {6});
    row("half a notch with Ctrl", 2, {0, 60}, {8, 8}, {}, Qt::ControlModifier);
    row("natural scrolling", 1, {0, 120}, {-6}, {}, {}, true);
    const std::function<void(QSlider&)> thereAndBack = [](QSlider& slider) {
        for (int up = 0; up < 2; ++up) turnWheel(slider, {0, 8});
        for (int down = 0; down < 9; ++down) turnWheel(slider, {0, -8});
    };
    QTest::newRow("small angles there and back") << thereAndBack << QList<int>{-1, -1};
}

QTEST_MAIN(SettingsWindowTest)
#include "SettingsWindowTest.moc"
