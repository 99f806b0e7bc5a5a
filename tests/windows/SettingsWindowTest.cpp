// Owns what the settings window writes and shows after each action of the user, and its start-up.

#include "SliderGeometry.h"
#include "WindowTest.h"
#include "WireText.h"

namespace {

const QColor kLight = QColor::fromRgbF(1, 1, 1, 0.8F);

const char* const kHeadphone = "SliderHeadphoneVolume";
const char* const kBoth = "SliderHmdiAuxVolume";
const char* const kOn = "HdcpOnButton";
const char* const kOff = "HdcpOffButton";
const char* const kPopUp = "PopupRecordQuality";

/// What the user does to the control that has the focus, or to its open menu.
using Act = std::function<void()>;

QWidget& focused() {
    return *QApplication::focusWidget();
}

QMenu& menu() {
    auto* open = qobject_cast<QMenu*>(&focused());
    return open ? *open : *dynamic_cast<CustomPopUpButton&>(focused()).menu();
}

Act press(const QList<QKeyCombination>& keys) {
    return [keys] {
        for (const QKeyCombination each : keys) typeInto(*focused().window(), each);
    };
}

Act hold(QKeyCombination keys) {
    return [keys] { typeInto(*focused().window(), keys, true); };
}

/// As on X11, where repeats wait while the program is busy.
void holdWhileBusy() {
    const auto pressAt = [](quint64 time) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Right, {}, {}, time > 100);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(&focused(), &event);
    };
    pressAt(100);
    QTest::qSleep(300); // the requests to a slow device
    for (const quint64 late : {130ULL, 160ULL, 190ULL}) pressAt(late);
    pressAt(390);
}

Act turn(int times, QPoint angle, QPoint pixels = {}, Qt::KeyboardModifiers modifiers = {}) {
    return [=] {
        for (int turn = 0; turn < times; ++turn) QVERIFY(turnWheel(focused(), angle, pixels, modifiers));
    };
}

QPoint knobAt(int value) {
    return knobRect(knobDistance(focused().width()) * value / 255).center();
}

void dragFrom128To50() {
    QTest::mousePress(&focused(), Qt::LeftButton, {}, knobAt(128));
    QTest::mouseMove(&focused(), knobAt(50));
    QTest::mouseRelease(&focused(), Qt::LeftButton, {}, knobAt(50));
}

void clickTwice() {
    for (int click = 0; click < 2; ++click) QTest::mouseClick(&focused(), Qt::LeftButton, {}, {12, 12});
}

/// The click ends a tenth of a second later.
void clickAndLeave() {
    dynamic_cast<QRadioButton&>(focused()).animateClick();
    focused().clearFocus();
    QTest::qWait(150);
}

void closeMenuAsTheWindowSystem() {
    press({Qt::Key_Space, Qt::Key_Up})();
    menu().windowHandle()->close();
}

// By assistive technology

QAccessibleInterface& accessible(QWidget& control) {
    return *QAccessible::queryAccessibleInterface(&control);
}

void setValueTo7() {
    accessible(focused()).valueInterface()->setCurrentValue(7);
}

Act doOnControl(const QString& action) {
    return [action] { accessible(focused()).actionInterface()->doAction(action); };
}

Act doOnItem(int index, const QString& action) {
    return [=] { accessible(menu()).child(index)->actionInterface()->doAction(action); };
}

void operateDisabled() {
    QWidget& popUp = focused();
    QAccessibleInterface& item = *accessible(menu()).child(0);
    popUp.setEnabled(false);
    accessible(popUp).actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    item.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
}

void windowShowsTheDevice(const SettingsWindow& settings) {
    const auto& held = device();
    const auto& popUp = settings.control<CustomPopUpButton>(kPopUp);
    QCOMPARE(popUp.indexOfSelectedItem(), held.settings[8] >> 4);
    QCOMPARE(settings.control("QualityImage").accessibleDescription(), popUp.titleOfSelectedItem());
    QCOMPARE(settings.control<QRadioButton>(kOn).isChecked(), held.settings[9] == 1);
    QCOMPARE(settings.control<QSlider>(kHeadphone).value(), held.audio[5]);
    QCOMPARE(settings.control<QSlider>(kBoth).value(), held.audio[1]);
    QVERIFY(!popUp.menu()->isVisible());
}

/// Each change was repainted.
void screenShowsTheWindow(QWidget& window) {
    const auto isShown = [&] {
        const QImage seen = window.screen()->grabWindow(window.winId()).toImage(); // at 200 % a quarter
        return seen == rendered(window, window.devicePixelRatio()).copy(seen.rect());
    };
    QVERIFY(QTest::qWaitFor(isShown));
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
        TestHost::take();
        settings.view().viewDidLoad();
        QCOMPARE(TestHost::take().front(), "close"); // the device, before it is opened again
        const auto& popUp = settings.control<CustomPopUpButton>(kPopUp);
        QCOMPARE(popUp.itemTitles().size(), 3);
        QVERIFY(popUp.arrowPosition() == CustomPopUpButton::ArrowPosition::None);
        QCOMPARE(settings.control<AttributedRadioButton>(kOff).attributedTitle().colorAt(0), kLight);
        QCOMPARE(settings.control<QRadioButton>(kOff).text(), "O&ff"); // with its mnemonic
    }

    void aLevelWithoutATitleCanBeReplaced() {
        device().settings[8] = 0x31;
        const SettingsWindow settings;
        QCOMPARE(settings.control<CustomPopUpButton>(kPopUp).indexOfSelectedItem(), -1);
        QCOMPARE(settings.control("QualityImage").accessibleDescription(), "High");
        press({Qt::Key_Space, Qt::Key_End, Qt::Key_Return})();
        QCOMPARE(device().settings[8], 0x21);
    }

    void titlesAreBlackWhileTheMenuIsOpen() {
        const SettingsWindow settings;
        const auto& popUp = settings.control<CustomPopUpButton>(kPopUp);
        press({Qt::Key_Space})();
        QCOMPARE(popUp.attributedTitle(2).colorAt(0), QColor(Qt::black));
        press({Qt::CTRL | Qt::Key_Q})();
        QVERIFY(!popUp.menu()->isVisible());
        QCOMPARE(popUp.attributedTitle(2).colorAt(0), kLight);
    }

    void everyAction_data() {
        QTest::addColumn<QString>("control");
        QTest::addColumn<Act>("act");
        QTest::addColumn<int>("writes");
        QTest::addColumn<QString>("setting");
        const auto add = [](const char* name, const char* control, const Act& act, int writes, const char* setting) {
            QTest::newRow(name) << control << act << writes << setting;
        };
        const auto pressAction = QAccessibleActionInterface::pressAction();
        const auto toggleAction = QAccessibleActionInterface::toggleAction();
        add("an arrow moves HDMI and AUX", kBoth, press({Qt::Key_Left}), 2, "HDMI 254, AUX 254");
        add("a page key moves a sixteenth", kHeadphone, press({Qt::Key_PageUp}), 1, "headphone 144");
        add("a drag moves the knob", kHeadphone, dragFrom128To50, 1, "headphone 50");
        add("a notch of the wheel moves three steps", kHeadphone, turn(1, {0, -120}), 1, "headphone 125");
        add("a touchpad's small angles add up", kHeadphone, turn(15, {0, 8}), 3, "headphone 131");
        add("only pixels add up", kHeadphone, turn(20, {}, {0, 2}), 2, "headphone 130");
        add("a notch to the side moves too", kHeadphone, turn(1, {-120, 0}), 1, "headphone 131");
        add("a notch with Ctrl moves a page", kHeadphone, turn(1, {0, 120}, {}, Qt::ControlModifier), 1,
            "headphone 144");
        add("assistive technology sets a volume", kHeadphone, setValueTo7, 1, "headphone 7");
        add("a held arrow repeats", kHeadphone, hold(Qt::Key_Left), 4, "headphone 124");
        add("repeats that arrive late are dropped", kHeadphone, holdWhileBusy, 2, "headphone 130");
        add("a click on the selected button writes too", kOn, clickTwice, 2, "HDCP 1");
        add("a click ends after the focus has moved", kOn, clickAndLeave, 1, "HDCP 1");
        add("assistive technology selects a button", kOn, doOnControl(toggleAction), 1, "HDCP 1");
        add("a held mnemonic is one press", kHeadphone, hold(Qt::ALT | Qt::Key_N), 1, "HDCP 1");
        add("the selected button's mnemonic writes", kBoth, press({Qt::ALT | Qt::Key_F}), 1, "HDCP 0");
        add("a mnemonic moves the focus", kBoth, press({Qt::ALT | Qt::Key_N, Qt::Key_Right}), 2, "HDCP 0");
        add("Tab goes to the selected button", kBoth, press({Qt::Key_Tab, Qt::Key_Left}), 1, "HDCP 1");
        add("an arrow chooses a level", kPopUp, press({Qt::Key_Down}), 1, "H.264 2");
        add("Return chooses again", kPopUp, press({Qt::Key_Space, Qt::Key_Return}), 1, "H.264 1");
        add("the window system closes the menu", kPopUp, closeMenuAsTheWindowSystem, 0, "H.264 1");
        add("assistive technology chooses a level", kPopUp, doOnItem(2, pressAction), 1, "H.264 2");
        add("the pop-up has no such action", kPopUp, doOnControl("Jump"), 0, "H.264 1");
        add("an item has no such action", kPopUp, doOnItem(0, "Jump"), 0, "H.264 1");
        add("a disabled pop-up neither opens nor chooses", kPopUp, operateDisabled, 0, "H.264 1");
    }
    void everyAction() {
        QFETCH(QString, control);
        QFETCH(Act, act);
        QFETCH(QString, setting);
        const SettingsWindow settings;
        int writes = 0;
        device().onRequest = [&](const RecordedRequest& request) { writes += request.isGet() ? 0 : 1; };
        settings.control(qPrintable(control)).setFocus();
        act();
        QCoreApplication::processEvents(); // that the toolkit has posted
        QTEST(writes, "writes");
        const QRegularExpression words("\\b" + QRegularExpression::escape(setting) + "\\b");
        QVERIFY(QString::fromStdString(settingsText(device())).contains(words));
        windowShowsTheDevice(settings);
        screenShowsTheWindow(settings.window());
    }

    void valuesOutOfRangeStop() {
        const SettingsWindow settings;
        auto& slider = settings.control<QSlider>(kHeadphone);
        const QSignalBlocker blocker(slider);
        slider.setRange(0, 300);
        slider.setValue(256);
        QCOMPARE(endOf([&] { settings.view().ChangeHeadphoneVolume(nullptr); }),
            "fatal SliderHeadphoneVolume: 256 does not fit in 8 bits");
        settings.control<CustomPopUpButton>(kPopUp).selectItemAtIndex(-1);
        QCOMPARE(endOf([&] { settings.view().ChooseRecordQuality(nullptr); }),
            "fatal PopupRecordQuality: -1 does not fit in 8 bits");
        settings.view().DeviceCtrl.reset();
        QCOMPARE(endOf([&] { settings.view().TurnOnHdcp(nullptr); }), "fatal DeviceCtrl is absent");
    }
};

QTEST_MAIN(SettingsWindowTest)
#include "SettingsWindowTest.moc"
