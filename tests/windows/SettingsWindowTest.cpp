// The settings window on the simulated device: start-up and every action of the user. The requests of each action,
// and what happens when they fail, are in faults/.

#include "ApplicationMain.h"
#include "Bundle.h"
#include "OpenWindow.h"
#include "SliderGeometry.h"

#include <QAbstractItemView>
#include <QAccessible>
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

/// What is done to the pop-up, which shows Middle, and the level that is then in the device; -1: no request follows.
/// Words that `act` does not explain are keys.
const std::vector<std::pair<const char*, int>> kPopUpActions{{"click over1 over2 click2", 2},
    {"press over1 over0 release0", 0}, {"Space Up Return", 0}, {"Space Enter", 1}, {"Down", 2}, {"Up", 0}, {"Home", 0},
    {"End", 2}, {"L", 2}, {"Space Down Esc H", 0}, {"toggle2", 2}, {"Space choose0", 0}, {"choose1", 1},
    {"Space Up Esc", -1}, {"Space Up Esc Z", -1}, {"Space Up elsewhere", -1}, {"Space Up hide", -1},
    {"Space Up close", -1}, {"Space black Esc", -1}, {"Z", -1}, {"leave wheel focus wheel Space wheel Esc", -1},
    {"select0 appear Space Esc", -1}, {"fill", -1}, {"empty Space", -1}, {"look appear", -1}};

void beBlackOnLight(const CustomPopUpButton& popUp) {
    QCOMPARE(popUp.attributedTitle(2).colorAt(0), QColor(Qt::black));
    const QImage list = popUp.view()->grab().toImage();
    QVERIFY(qGray(list.pixel(100, list.height() - 5)) > 200);
    int darkest = 255;
    for (int x = 8; x < 60; ++x) darkest = std::min(darkest, qGray(list.pixel(x, list.height() - 14)));
    QVERIFY(darkest < 100);
}

void fill(CustomPopUpButton& popUp) {
    popUp.removeAllItems();
    popUp.addItemsWithTitles({"One", "Two", "Three", "Four"});
    for (const int index : {3, -1, 9, 2}) popUp.selectItemAtIndex(index);
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
        QCoreApplication::sendEvent(popUp.view(), &change);
    }
}

void act(CustomPopUpButton& popUp, const QString& words) {
    QAbstractItemView& list = *popUp.view();
    const auto item = [&](int row) { return popUp.model()->index(row, 0); };
    const auto place = [&](int row) { return list.visualRect(item(row)).center(); };
    const auto assist = [&](int row, const QString& action) {
        QAccessible::queryAccessibleInterface(&list)->child(row)->actionInterface()->doAction(action);
    };
    const std::map<QString, std::function<void(int)>> meanings{
        {"click", [&](int) { QTest::mouseClick(&popUp, Qt::LeftButton); }},
        {"press", [&](int) { QTest::mousePress(&popUp, Qt::LeftButton); }},
        {"over0", [&](int row) { QTest::mouseMove(list.viewport(), place(row), 9); }},
        {"click0", [&](int row) { QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place(row)); }},
        {"release0", [&](int row) { QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, place(row), 9); }},
        {"toggle0", [&](int row) { assist(row, QAccessibleActionInterface::toggleAction()); }},
        {"choose0", [&](int row) { assist(row, QAccessibleActionInterface::pressAction()); }},
        {"elsewhere", [&](int) { QTest::mouseClick(list.window(), Qt::LeftButton, {}, QPoint(-40, 300)); }},
        {"hide", [&](int) { popUp.hidePopup(); }},
        {"close", [&](int) { list.window()->windowHandle()->close(); }}, // as the window system does
        {"leave", [&](int) { popUp.clearFocus(); }},
        {"focus", [&](int) { popUp.setFocus(); }},
        {"wheel", [&](int) { turnWheel(list.isVisible() ? *list.viewport() : popUp, -120); }},
        // As newer toolkits do by themselves.
        {"select0", [&](int row) { list.selectionModel()->select(item(row), QItemSelectionModel::ClearAndSelect); }},
        {"appear", [&](int) { popUp.hide(), popUp.show(); }},
        {"black", [&](int) { beBlackOnLight(popUp); }},
        {"fill", [&](int) { fill(popUp); }},
        {"empty", [&](int) { popUp.removeAllItems(); }},
        {"look", [&](int) { changeLook(popUp); }},
    };
    for (const QString& word : words.split(' ')) {
        const int row = word.back().digitValue();
        const auto meaning = meanings.find(row < 0 ? word : word.chopped(1) + '0');
        if (meaning != meanings.end())
            meaning->second(row);
        else
            QTest::keyClick(list.isVisible() ? static_cast<QWidget*>(&list) : &popUp, QKeySequence(word)[0].key());
    }
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
            QCOMPARE(popUp.currentIndex(), item);
            QCOMPARE(settings.control("QualityImage").accessibleDescription(), popUp.itemText(std::max(item, 0)));
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
        QCOMPARE(popUp.count(), 3);
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

    void onlyAChoiceActs_data() {
        QTest::addColumn<int>("level");
        for (const auto& [words, level] : kPopUpActions) QTest::newRow(words) << level;
    }
    void onlyAChoiceActs() {
        QFETCH(int, level);
        QString menu; // "o" for opening, "c" for closing, "!" for requests
        const SettingsWindow settings;
        auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
        const QAbstractItemView& list = *popUp.view();
        popUp.setFocus();
        connect(&popUp, &CustomPopUpButton::menuWillOpen, [&] { menu += list.isVisible() ? "late" : "o"; });
        connect(&popUp, &CustomPopUpButton::menuDidClose, [&] { menu += 'c'; });
        device().onRequest = [&, note = device().onRequest](const RecordedRequest& request) {
            menu += menu.endsWith('!') ? "" : "!";
            note(request);
        };
        TestHost::take();
        act(popUp, QTest::currentDataTag());
        QTest::qWait(20); // what the toolkit does later
        QCOMPARE(TestHost::takeRequests().size(), level < 0 ? 0U : 4U);
        QCOMPARE(device().settings[8] >> 4, level < 0 ? 1 : level);
        QVERIFY2(QRegularExpression("^(oc)*!?$").match(menu).hasMatch(), qPrintable(menu));
        QVERIFY(!list.isVisible());
        QVERIFY(popUp.count() == 0 || popUp.attributedTitle(2).colorAt(0) == kLight);
        QCOMPARE(list.currentIndex().row(), popUp.currentIndex());
        QCOMPARE(list.selectionModel()->selectedIndexes().value(0).row(), popUp.currentIndex());
        if (level < 0) return;
        QCOMPARE(popUp.currentIndex(), level);
        QCOMPARE(settings.control("QualityImage").accessibleDescription(), popUp.itemText(level));
    }

    void onlyOutletsInUseAreRequired() {
        const QStringList unused{"MyMainImageView", "LabelBitRateState", "ButtonHigh", "ButtonMiddle", "ButtonLow",
            "LabelMicrophoneVolume", "LabelHeadphoneVolume", "LabelHdmiAuxVolume"};
        const SettingsWindow settings;
        QCOMPARE(settings.view().outlets().size(), std::size_t{16});
        for (const OutletBase* outlet : settings.view().outlets()) {
            const QByteArray name = outlet->name();
            const ChildEnd end = runInChild([&name] {
                changeDescription("settings-window.ui", name, "objectName", "Another");
                const SettingsWindow incomplete;
            });
            QCOMPARE(end.aborted, !unused.contains(name));
            if (end.aborted)
                QCOMPARE(end.journal.back(), "log Fatal: outlet " + name.toStdString() + " is not connected");
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
