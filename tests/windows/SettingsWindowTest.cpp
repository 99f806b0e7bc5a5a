// The settings window on the simulated device: start-up and every action of the user. What happens when
// requests fail is in faults/.

#include "ApplicationMain.h"
#include "OpenWindow.h"
#include "windows/Bundle.h"

#include <QAbstractItemView>
#include <QAccessible>

#include <array>
#include <functional>

namespace {

/// The requests as words like "GET 13" and "SET 11", failed ones with a "!".
QString requestsInShort() {
    QStringList words;
    for (const std::string& request : SimulatedHost::takeRequests()) {
        const QString text = QString::fromStdString(request);
        words << (text.startsWith("a1") ? "GET " : "SET ") + QString::number(text.mid(9, 2).toInt(nullptr, 16))
                + (text.contains('!') ? "!" : "");
    }
    return words.join(", ");
}

bool showsStars(const SettingsWindow& settings, const char* image) {
    const QImage expected = mainBundle::imageNamed(QString::fromLatin1(image)).toImage();
    return !expected.isNull() && settings.control<QLabel>("QualityImage").pixmap().toImage() == expected;
}

void chooseItem(SettingsWindow& settings, int index) {
    auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
    popUp.showPopup();
    popUp.view()->setCurrentIndex(popUp.model()->index(index, 0));
    QTest::keyClick(popUp.view(), Qt::Key_Return);
}

QPoint knob(const QSlider& slider, int value) {
    const int travel = slider.width() - 6 - 15;
    return {3 + 7 + travel * value / 255, 34};
}

} // namespace

class SettingsWindowTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
    void init() { SimulatedHost::reset(); }

    void startUpShowsTheDevice() {
        for (const auto& [levels, hdcp, stars, item] :
            {std::tuple(0x02, 1, "img_starBest.png", 0), {0x12, 0, "img_starGood.png", 1},
                {0x20, 2, "img_starGen.png", 2}, {0x51, 255, "img_starBest.png", -1}}) {
            device().settings[8] = static_cast<std::uint8_t>(levels);
            device().settings[9] = static_cast<std::uint8_t>(hdcp);
            device().audio = {0, 11, 22, 33, 0, 55, 0};
            const std::array<std::uint8_t, 12> firmware{1, 2, 3, 4, 100, 0, 9, 99, 10, 0, 255, 7};
            std::ranges::copy(firmware, device().versions.begin() + 14);
            const SettingsWindow settings;
            QVERIFY2(showsStars(settings, stars), stars);
            auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
            QCOMPARE(popUp.currentIndex(), item);
            QCOMPARE(settings.control("QualityImage").accessibleDescription(),
                popUp.itemText(std::max(popUp.currentIndex(), 0)));
            QCOMPARE(settings.control<QSlider>("SliderMicrophoneVolume").value(), 33);
            QCOMPARE(settings.control<QSlider>("SliderHeadphoneVolume").value(), 55);
            QCOMPARE(settings.control<QSlider>("SliderHmdiAuxVolume").value(), 11);
            QCOMPARE(settings.control<QRadioButton>("HdcpOnButton").isChecked(), hdcp == 1);
            QCOMPARE(settings.control<QRadioButton>("HdcpOffButton").isChecked(), hdcp != 1);
            auto& label = settings.control<QLabel>("LabelFwVersion");
            QCOMPARE(label.text(), "Firmware v10.0.255.7 (01020304.100000999)");
            QCOMPARE(QAccessible::queryAccessibleInterface(&label)->text(QAccessible::Name), label.text());
            QCOMPARE(requestsInShort(),
                "GET 11, GET 11, GET 13, GET 13, GET 13, GET 12, GET 11"); // showing is no action
        }
    }

    void startingUpAgainLetsGoOfTheDeviceFirst() {
        const SettingsWindow settings;
        settings.view().setRepresentedObject(5);
        SimulatedHost::take();
        settings.view().viewDidLoad();
        QCOMPARE(SimulatedHost::take().front(), "release");
        QCOMPARE(settings.view().representedObject(), 5);
    }

    void startUpStylesTheTitles() {
        const SettingsWindow settings;
        const QColor light = QColor::fromRgbF(1, 1, 1, 0.8F);
        auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
        const QStringList titles{"High", "Middle", "Low"};
        QCOMPARE(popUp.count(), 3);
        QVERIFY(popUp.arrowPosition() == CustomPopUpButton::ArrowPosition::None);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(popUp.attributedTitle(i).string, titles[i]);
            QCOMPARE(popUp.attributedTitle(i).colorAt(0), light);
        }
        for (const char* name : {"HdcpOnButton", "HdcpOffButton"}) {
            auto& button = settings.control<AttributedRadioButton>(name);
            QCOMPARE(button.attributedTitle().string, button.text());
            QCOMPARE(button.attributedTitle().colorAt(0), light);
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
            const auto held = [byte = byte] { return int{device().audio[byte]}; };
            SimulatedHost::take();
            QTest::keyClick(&control, Qt::Key_Right);
            QCOMPARE(held(), 101);
            QCOMPARE(requestsInShort(), hasAux ? "GET 13, SET 13, GET 13, SET 13, GET 13" : "GET 13, SET 13, GET 13");
            QTest::keyClick(&control, Qt::Key_PageUp);
            QCOMPARE(held(), 117);
            QTest::mouseClick(&control, Qt::LeftButton, {}, knob(control, 250));
            QCOMPARE(held(), 133);
            QTest::mousePress(&control, Qt::LeftButton, {}, knob(control, 133));
            QTest::mouseMove(&control, knob(control, 50));
            QTest::mouseRelease(&control, Qt::LeftButton, {}, knob(control, 50));
            QVERIFY2(std::abs(held() - 50) <= 1, qPrintable(QString::number(held())));
            const int before = held();
            QWheelEvent wheel(knob(control, 50), control.mapToGlobal(knob(control, 50)), {}, {0, 120}, {}, {},
                Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(&control, &wheel);
            QVERIFY(held() > before);
            QAccessible::queryAccessibleInterface(&control)->valueInterface()->setCurrentValue(7);
            QCOMPARE(held(), 7);
            QCOMPARE(control.value(), 7);
            QCOMPARE(device().audio[2], hasAux ? 7 : 100); // AUX goes with HDMI only
        }
    }

    void radioButtonsActOnEveryPress() {
        SettingsWindow settings;
        auto& on = settings.control<QRadioButton>("HdcpOnButton");
        auto& off = settings.control<QRadioButton>("HdcpOffButton");
        SimulatedHost::take();
        QTest::mouseClick(&on, Qt::LeftButton, {}, {12, on.height() / 2});
        QCOMPARE(requestsInShort(), "GET 11, SET 11, GET 11");
        QTest::mouseClick(&on, Qt::LeftButton, {}, {12, on.height() / 2}); // the selected one again
        QCOMPARE(requestsInShort(), "GET 11, SET 11, GET 11");
        QCOMPARE(device().settings[9], 1);
        on.setFocus();
        QTest::keyClick(&on, Qt::Key_Right);
        QCOMPARE(requestsInShort(), "GET 11, SET 11, GET 11");
        QVERIFY(off.isChecked());
        QAccessible::queryAccessibleInterface(&on)->actionInterface()->doAction(
            QAccessibleActionInterface::toggleAction());
        QCOMPARE(requestsInShort(), "GET 11, SET 11, GET 11");
        QCOMPARE(device().settings[9], 1);
    }

    void popUpActsAlsoOnTheSameItem() {
        SettingsWindow settings;
        SimulatedHost::take();
        chooseItem(settings, 1);
        QCOMPARE(requestsInShort(), "GET 11, GET 11, SET 11, GET 11");
        auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
        QTest::keyClick(&popUp, Qt::Key_Down);
        QCOMPARE(device().settings[8], 0x21);
        QCOMPARE(settings.control("QualityImage").accessibleDescription(), "Low");
        // As assistive technology chooses, without opening the list, and again after a key.
        for (int time = 0; time < 2; ++time) {
            popUp.view()->selectionModel()->select(popUp.model()->index(0, 0), QItemSelectionModel::ClearAndSelect);
            QCOMPARE(device().settings[8], 0x01);
            QTest::keyClick(&popUp, Qt::Key_Down);
            QCOMPARE(device().settings[8], 0x11);
        }
        popUp.view()->selectionModel()->clearSelection(); // is no choice
        QCOMPARE(popUp.currentIndex(), 1);
    }

    void popUpIsBlackWhileOpen() {
        const SettingsWindow settings;
        auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
        const auto color = [&popUp] { return popUp.attributedTitle(2).colorAt(0); };
        connect(&popUp, &CustomPopUpButton::menuWillOpen, [&popUp] { QVERIFY(!popUp.view()->isVisible()); });
        popUp.showPopup();
        QCOMPARE(color(), QColor(Qt::black));
        popUp.view()->window()->windowHandle()->close(); // as the window system does
        QCOMPARE(color(), QColor::fromRgbF(1, 1, 1, 0.8F));
        popUp.showPopup();
        const QImage list = popUp.view()->grab().toImage();
        QVERIFY(qGray(list.pixel(100, list.height() - 5)) > 200); // black titles need a light ground
        int darkest = 255;
        for (int x = 8; x < 60; ++x) darkest = std::min(darkest, qGray(list.pixel(x, list.height() - 14)));
        QVERIFY(darkest < 100);
        QTest::keyClick(popUp.view(), Qt::Key_Escape);
        QCOMPARE(color(), QColor::fromRgbF(1, 1, 1, 0.8F));
    }

    void outletsAreConnected() {
        const SettingsWindow settings;
        QStringList connected;
        for (const OutletBase* outlet : settings.view().outlets()) {
            QVERIFY2(outlet->isConnected(), outlet->name());
            connected << outlet->name();
        }
        QCOMPARE(connected.join(' '),
            "MyMainImageView LabelBitRateState ButtonHigh ButtonMiddle ButtonLow PopupRecordQuality QualityImage "
            "LabelMicrophoneVolume SliderMicrophoneVolume LabelHeadphoneVolume SliderHeadphoneVolume "
            "LabelHdmiAuxVolume SliderHmdiAuxVolume LabelFwVersion HdcpOnButton HdcpOffButton");
    }

    void missingOutletStopsAtItsFirstUse_data() {
        QTest::addColumn<bool>("used");
        for (const char* name : {"PopupRecordQuality", "QualityImage", "SliderMicrophoneVolume",
                 "SliderHeadphoneVolume", "SliderHmdiAuxVolume", "LabelFwVersion", "HdcpOnButton", "HdcpOffButton"})
            QTest::newRow(name) << true;
        for (const char* name : {"MyMainImageView", "LabelBitRateState", "ButtonHigh", "LabelHdmiAuxVolume"})
            QTest::newRow(name) << false;
    }
    void missingOutletStopsAtItsFirstUse() {
        QFETCH(bool, used);
        const QByteArray name = QTest::currentDataTag();
        ChangedBundle bundle;
        bundle.replace("Main/settings-window.ui", "name=\"" + name + "\"", "name=\"Another\"");
        const ChildEnd end = runInChild([] { const SettingsWindow settings; });
        QCOMPARE(end.aborted, used);
        if (used) QCOMPARE(end.journal.back(), "log Fatal: outlet " + name.toStdString() + " is not connected");
    }

    void whatDoesNotFitStops_data() {
        QTest::addColumn<int>("volume");
        QTest::newRow("SliderHeadphoneVolume: 256 does not fit in 8 bits") << 256;
        QTest::newRow("SliderHeadphoneVolume: -1 does not fit in 8 bits") << -1;
        QTest::newRow("PopupRecordQuality: -1 does not fit in 8 bits") << 0;
        QTest::newRow("DeviceCtrl is absent") << 0;
    }
    void whatDoesNotFitStops() {
        QFETCH(int, volume);
        const QString line = QTest::currentDataTag();
        const ChildEnd end = runInChild([volume, &line] {
            const SettingsWindow settings;
            auto& slider = settings.control<QSlider>("SliderHeadphoneVolume");
            slider.setRange(-5, 300);
            if (volume != 0) slider.setValue(volume);
            settings.control<CustomPopUpButton>("PopupRecordQuality").selectItemAtIndex(-1);
            if (line.startsWith("Popup")) settings.view().ChooseRecordQuality(nullptr);
            settings.view().DeviceCtrl.reset();
            settings.view().TurnOnHdcp(nullptr);
        });
        QVERIFY(end.aborted);
        QCOMPARE(QString::fromStdString(end.journal.back()), "log Fatal: " + line);
    }
};

QTEST_MAIN(SettingsWindowTest)
#include "SettingsWindowTest.moc"
