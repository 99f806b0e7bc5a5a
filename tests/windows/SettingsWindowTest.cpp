// The settings window on the simulated device: start-up and every action of the user. The requests of each action,
// and what happens when they fail, are in faults/.

#include "ApplicationMain.h"
#include "Bundle.h"
#include "OpenWindow.h"
#include "Pictures.h"
#include "SliderGeometry.h"

#include <QAccessible>
#include <QStyle>
#include <QStyleFactory>

#include <map>

namespace {

const QColor kLight = QColor::fromRgbF(1, 1, 1, 0.8F);

QPoint knob(const QSlider& slider, int value) {
    return knobRect(knobDistance(slider.width()) * value / 255).center();
}

void turnWheel(QWidget& over, int angle) {
    QWheelEvent turned({9, 9}, over.mapToGlobal(QPointF(9, 9)), {}, {0, angle}, {}, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&over, &turned);
}

/// What is done to the pop-up, which shows Middle; what follows of it ("o" the menu opens, "c" it closes, "!"
/// requests); the level that is then in the device.
struct PopUpActions {
    const char* words; ///< those that `act` does not explain are keys
    const char* follows;
    int level = 1;
};

const std::vector<PopUpActions> kPopUpActions{{"click over1 over2 click2", "oc!", 2},
    {"press over1 over0 release0", "oc!", 0}, {"Space Up Return", "oc!", 0}, {"Space Enter", "oc!"}, {"Down", "!", 2},
    {"Up", "!", 0}, {"Home", "!", 0}, {"End", "!", 2}, {"L", "!", 2}, {"Space Down Esc H", "oc!", 0},
    {"Space choose0", "oc!", 0}, {"choose1", "!"}, {"Down Down", "!", 2}, {"Space Up Esc", "oc"}, {"F4 Esc", "oc"},
    {"Space Up elsewhere", "oc"}, {"Space Up hide", "oc"}, {"Space Up close", "oc"}, {"Space black Esc", "oc"},
    {"look Space black Esc", "oc"}, {"wheel Space wheel Esc", "oc"}, {"right", ""}, {"Z", ""}, {"fill", ""},
    {"empty Space", ""}};

void beBlackOnLight(const CustomPopUpButton& popUp) {
    QCOMPARE(popUp.attributedTitle(2).colorAt(0), QColor(Qt::black));
    QCOMPARE(popUp.menu()->actionGeometry(popUp.menu()->actions()[2]), QRect(1, 57, 158, 28));
    const QImage row = rendered(*popUp.menu(), 1, {8, 57, 52, 28});
    const auto shades = counted(row);
    const auto isDark = [](QRgb color) { return qGray(color) < 100; };
    QVERIFY(qGray(row.pixel(0, 0)) > 200 && std::any_of(shades.keyBegin(), shades.keyEnd(), isDark));
}

void fill(CustomPopUpButton& popUp) {
    popUp.removeAllItems();
    popUp.addItemsWithTitles({"One", "Two", "Three", "Four"});
    for (const int index : {3, -1, 9, 2}) {
        popUp.selectItemAtIndex(index);
        QCOMPARE(popUp.indexOfSelectedItem(), index == 9 ? -1 : index);
    }
}

/// All that a desktop may change.
void changeLook(CustomPopUpButton& popUp) {
    popUp.setFont(QFont("DejaVu Sans", 30));
    popUp.setPalette(Qt::yellow);
    QStyle* other = QStyleFactory::create("Windows");
    other->setParent(&popUp);
    popUp.setStyle(other);
    for (const auto type : {QEvent::LanguageChange, QEvent::LocaleChange, QEvent::ScreenChangeInternal}) {
        QEvent change(type);
        QCoreApplication::sendEvent(&popUp, &change);
        QCoreApplication::sendEvent(popUp.menu(), &change);
    }
}

void act(CustomPopUpButton& popUp, const QString& words) {
    QMenu& menu = *popUp.menu();
    const auto place = [&](int row) { return menu.actionGeometry(menu.actions()[row]).center(); };
    const auto choose = [&](int row) {
        QAccessible::queryAccessibleInterface(&menu)->child(row)->actionInterface()->doAction(
            QAccessibleActionInterface::pressAction());
    };
    const std::map<QString, std::function<void(int)>> meanings{
        {"click", [&](int) { QTest::mouseClick(&popUp, Qt::LeftButton); }},
        {"right", [&](int) { QTest::mouseClick(&popUp, Qt::RightButton); }},
        {"press", [&](int) { QTest::mousePress(&popUp, Qt::LeftButton); }},
        {"over0", [&](int row) { QTest::mouseMove(&menu, place(row), 9); }},
        {"click0", [&](int row) { QTest::mouseClick(&menu, Qt::LeftButton, {}, place(row)); }},
        {"release0", [&](int row) { QTest::mouseRelease(&menu, Qt::LeftButton, {}, place(row), 9); }},
        {"choose0", choose},
        {"elsewhere", [&](int) { QTest::mouseClick(&menu, Qt::LeftButton, {}, QPoint(-40, 300)); }},
        {"hide", [&](int) { menu.hide(); }},
        {"close", [&](int) { menu.windowHandle()->close(); }}, // as the window system does
        {"wheel", [&](int) { turnWheel(menu.isVisible() ? static_cast<QWidget&>(menu) : popUp, -120); }},
        {"black", [&](int) { beBlackOnLight(popUp); }},
        {"fill", [&](int) { fill(popUp); }},
        {"empty", [&](int) { popUp.removeAllItems(); }},
        {"look", [&](int) { changeLook(popUp); }},
    };
    for (const QString& word : words.split(' ')) {
        const int row = word.back().digitValue();
        const auto meaning = meanings.find(row < 0 || word == "F4" ? word : word.chopped(1) + '0');
        if (meaning != meanings.end()) {
            meaning->second(row);
            continue;
        }
        const Qt::Key key = QKeySequence(word)[0].key();
        QVERIFY2(key != Qt::Key_unknown, qPrintable(word));
        QTest::keyClick(menu.isVisible() ? static_cast<QWidget*>(&menu) : &popUp, key);
    }
}

/// Holds a key down until it has repeated three times, as a window system reports it.
void hold(QWidget& control, Qt::Key key, Qt::KeyboardModifiers modifiers, const QString& text) {
    const auto send = [&](bool press, bool repeat) {
        QWidget* popUp = QApplication::activePopupWidget();
        QTest::simulateEvent(popUp ? popUp : &control, press, key, modifiers, text, repeat);
    };
    send(true, false);
    for (int repeats = 0; repeats < 3; ++repeats) {
        send(false, true);
        send(true, true);
    }
    send(false, false);
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

    void startUpShowsTheDevice() {
        for (const auto& [levels, hdcp, stars, item] :
            {std::tuple(0x02, 1, "img_starBest.png", 0), {0x12, 0, "img_starGood.png", 1},
                {0x20, 2, "img_starGen.png", 2}, {0x31, 255, "img_starBest.png", -1}}) {
            device().settings[8] = static_cast<std::uint8_t>(levels);
            device().settings[9] = static_cast<std::uint8_t>(hdcp);
            const std::array<std::uint8_t, 12> firmware{1, 2, 3, 4, 100, 0, 9, 99, 10, 0, 255, 7};
            std::ranges::copy(firmware, device().versions.begin() + 14);
            const SettingsWindow settings;
            QCOMPARE(
                settings.control<QLabel>("QualityImage").pixmap().toImage(), mainBundle::imageNamed(stars).toImage());
            auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
            QCOMPARE(popUp.indexOfSelectedItem(), item);
            QCOMPARE(settings.control("QualityImage").accessibleDescription(),
                popUp.attributedTitle(std::max(item, 0)).string);
            QCOMPARE(settings.control<QRadioButton>("HdcpOffButton").isChecked(), hdcp != 1);
            auto& label = settings.control<QLabel>("LabelFwVersion");
            QCOMPARE(label.text(), "Firmware v10.0.255.7 (01020304.100000999)");
            QCOMPARE(QAccessible::queryAccessibleInterface(&label)->text(QAccessible::Name), label.text());
        }
    }

    void startUpCanBeRepeated() {
        const SettingsWindow settings;
        settings.view().setRepresentedObject(5);
        TestHost::take();
        settings.view().viewDidLoad();
        QCOMPARE(TestHost::take().front(), "release"); // of the device, before it is opened again
        QCOMPARE(settings.view().representedObject(), 5);
        auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
        QVERIFY(popUp.arrowPosition() == CustomPopUpButton::ArrowPosition::None);
        QCOMPARE(popUp.menu()->actions().size(), 3);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(popUp.attributedTitle(i).string, QStringList({"High", "Middle", "Low"})[i]);
            QCOMPARE(popUp.attributedTitle(i).colorAt(0), kLight);
        }
        for (const char* name : {"HdcpOnButton", "HdcpOffButton"}) {
            auto& button = settings.control<AttributedRadioButton>(name);
            QCOMPARE(button.attributedTitle().string, button.text());
            QCOMPARE(button.attributedTitle().colorAt(0), kLight);
        }
        QCOMPARE(settings.control("HdcpOffButton").property("text").toString(), "O&ff"); // with its mnemonic
    }

    void everyWayOfTheUserActs() {
        for (const auto& [slider, byte] : {std::pair("SliderMicrophoneVolume", std::size_t{3}),
                 {"SliderHeadphoneVolume", 5}, {"SliderHmdiAuxVolume", 1}}) {
            const bool hasAux = byte == 1;
            device().audio = {1, 100, 100, 100, 1, 100, 1};
            const SettingsWindow settings;
            auto& control = settings.control<QSlider>(slider);
            const auto held = [at = byte] { return int{device().audio[at]}; };
            TestHost::take();
            QTest::keyClick(&control, Qt::Key_Right);
            QCOMPARE(held(), 101);
            QCOMPARE(TestHost::takeRequests().size(), hasAux ? 5U : 3U);
            QTest::keyClick(&control, Qt::Key_PageUp);
            QCOMPARE(held(), 117);
            QTest::mouseClick(&control, Qt::LeftButton, {}, knob(control, 250));
            QCOMPARE(held(), 133);
            QTest::mousePress(&control, Qt::LeftButton, {}, knob(control, 133));
            QTest::mouseMove(&control, knob(control, 50));
            QTest::mouseRelease(&control, Qt::LeftButton, {}, knob(control, 50));
            QVERIFY(std::abs(held() - 50) <= 1);
            turnWheel(control, 120);
            QVERIFY(held() > 51);
            QAccessible::queryAccessibleInterface(&control)->valueInterface()->setCurrentValue(7);
            QCOMPARE(held(), 7);
            QCOMPARE(control.value(), 7);
            QCOMPARE(device().audio[2], hasAux ? 7 : 100); // AUX goes with HDMI only
        }
    }

    void radioButtonsActOnEveryPress() {
        const SettingsWindow settings;
        auto& on = settings.control<QRadioButton>("HdcpOnButton");
        const auto click = [&] { QTest::mouseClick(&on, Qt::LeftButton, {}, {12, on.height() / 2}); };
        const auto right = [&] { QTest::keyClick(&on, Qt::Key_Right); };
        const auto toggle = [&] {
            QAccessible::queryAccessibleInterface(&on)->actionInterface()->doAction(
                QAccessibleActionInterface::toggleAction());
        };
        // Alt+N presses the button for a tenth of a second; a hasty user has left it by then.
        const auto pressAndLeave = [&] { on.animateClick(), on.clearFocus(), QTest::qWait(150); };
        // The second click is one on the selected button.
        const std::vector<std::pair<std::function<void()>, int>> presses{
            {click, 1}, {click, 1}, {right, 0}, {toggle, 1}, {right, 0}, {pressAndLeave, 1}};
        TestHost::take();
        for (const auto& [press, state] : presses) {
            on.setFocus();
            press();
            QCoreApplication::processEvents();
            QCOMPARE(TestHost::takeRequests().size(), 3U);
            QCOMPARE(device().settings[9], state);
            QCOMPARE(on.isChecked(), state == 1);
        }
    }

    void aHeldKeyIsOnePress() {
        struct Held {
            const char* control;
            Qt::Key key;
            Qt::KeyboardModifiers modifiers;
            const char* text;
            std::size_t requests;
        };
        const SettingsWindow settings;
        TestHost::take();
        for (const Held& row : {Held{"HdcpOffButton", Qt::Key_N, Qt::AltModifier, "n", 3},
                 {"SliderHeadphoneVolume", Qt::Key_F, Qt::AltModifier, "f", 3},
                 {"HdcpOnButton", Qt::Key_Space, {}, " ", 3}, {"PopupRecordQuality", Qt::Key_Down, {}, "", 4},
                 {"SliderHeadphoneVolume", Qt::Key_Left, {}, "", 12},
                 {"SliderMicrophoneVolume", Qt::Key_PageDown, {}, "", 12},
                 {"PopupRecordQuality", Qt::Key_Space, {}, " ", 0}}) { // opens the menu and chooses nothing
            auto& control = settings.control(row.control);
            control.setFocus();
            hold(control, row.key, row.modifiers, row.text);
            QCoreApplication::processEvents();
            QCOMPARE(TestHost::takeRequests().size(), row.requests);
        }
        auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
        QVERIFY(popUp.menu()->isVisible());
        popUp.menu()->hide();
        // A repeat that the toolkit does not recognise, and a press that follows soon
        const auto send = [&popUp](QEvent::Type type, quint64 time) {
            QKeyEvent event(type, Qt::Key_Up, {});
            event.setTimestamp(time);
            event.ignore();
            QCoreApplication::sendEvent(&popUp, &event);
            return event.isAccepted();
        };
        for (const quint64 time : {500U, 530U}) {
            send(QEvent::KeyPress, time - 1);
            send(QEvent::KeyRelease, time);
            QVERIFY(send(QEvent::ShortcutOverride, time));
            send(QEvent::KeyPress, time);
            QCOMPARE(TestHost::takeRequests().size(), 4U);
        }
    }

    void tabGoesToTheSelectedRadioButton() {
        const SettingsWindow settings;
        for (const char* selected : {"HdcpOffButton", "HdcpOnButton"}) {
            auto& button = settings.control<QRadioButton>(selected);
            button.click();
            for (const char* before : {"SliderHmdiAuxVolume", "LabelFwVersion"}) {
                auto& neighbour = settings.control(before);
                neighbour.setFocus();
                QTest::keyClick(&neighbour, Qt::Key_Tab, before[0] == 'S' ? Qt::NoModifier : Qt::ShiftModifier);
                QCOMPARE(QApplication::focusWidget(), &button);
            }
        }
    }

    void onlyAChoiceActs_data() {
        QTest::addColumn<QString>("follows");
        QTest::addColumn<int>("level");
        for (const PopUpActions& row : kPopUpActions) QTest::newRow(row.words) << QString(row.follows) << row.level;
    }
    void onlyAChoiceActs() {
        QFETCH(QString, follows);
        QFETCH(int, level);
        QString followed;
        const SettingsWindow settings;
        auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
        popUp.setFocus();
        connect(popUp.menu(), &QMenu::aboutToShow, [&] { followed += popUp.menu()->isVisible() ? "late" : "o"; });
        connect(popUp.menu(), &QMenu::aboutToHide, [&] { followed += 'c'; });
        device().onRequest = [&, note = device().onRequest](const RecordedRequest& request) {
            followed += followed.endsWith('!') ? "" : "!";
            note(request);
        };
        TestHost::take();
        act(popUp, QTest::currentDataTag());
        QCoreApplication::processEvents(); // what the toolkit does later
        QCOMPARE(followed, follows);
        QCOMPARE(TestHost::takeRequests().size(), follows.endsWith('!') ? 4U : 0U);
        QCOMPARE(device().settings[8] >> 4, level);
        QVERIFY(!popUp.menu()->isVisible());
        QVERIFY(popUp.menu()->isEmpty() || popUp.attributedTitle(2).colorAt(0) == kLight);
        if (!follows.endsWith('!')) return;
        QCOMPARE(popUp.indexOfSelectedItem(), level);
        QCOMPARE(settings.control("QualityImage").accessibleDescription(), popUp.titleOfSelectedItem());
    }

    void onlyOutletsInUseAreRequired() {
        const SettingsWindow settings;
        QCOMPARE(settings.view().outlets().size(), std::size_t{16});
        for (const OutletBase* outlet : settings.view().outlets()) QVERIFY(&settings.control(outlet->name()));
        for (const char* name : {"ButtonHigh", "HdcpOffButton"}) {
            const bool isUsed = name[0] == 'H';
            const ChildEnd end = runInChild([&name] {
                changeDescription("settings-window.ui", name, "objectName", "Another");
                const SettingsWindow incomplete;
            });
            QCOMPARE(end.aborted, isUsed);
            if (isUsed) QCOMPARE(end.journal.back(), "log Fatal: outlet HdcpOffButton is not connected");
        }
    }

    void whatDoesNotFitStops() {
        for (const auto& [volume, line] : {std::pair(256, "SliderHeadphoneVolume: 256 does not fit in 8 bits"),
                 {-1, "SliderHeadphoneVolume: -1 does not fit in 8 bits"},
                 {255, "PopupRecordQuality: -1 does not fit in 8 bits"}, {0, "DeviceCtrl is absent"}}) {
            const ChildEnd end = runInChild([chosen = volume] {
                const SettingsWindow settings;
                auto& slider = settings.control<QSlider>("SliderHeadphoneVolume");
                slider.setRange(-5, 300);
                slider.setValue(chosen);
                settings.control<CustomPopUpButton>("PopupRecordQuality").selectItemAtIndex(-1);
                if (chosen == 255) settings.view().ChooseRecordQuality(nullptr);
                settings.view().DeviceCtrl.reset();
                settings.view().TurnOnHdcp(nullptr);
            });
            QVERIFY(end.aborted);
            QCOMPARE(QString::fromStdString(end.journal.back()), QStringLiteral("log Fatal: ") + line);
        }
    }
};

QTEST_MAIN(SettingsWindowTest)
#include "SettingsWindowTest.moc"
