// The settings window on the simulated device: start-up and every action of the user. What happens when
// requests fail is in faults/.

#include "ApplicationMain.h"
#include "Bundle.h"
#include "OpenWindow.h"
#include "SliderGeometry.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QStyleFactory>

#include <array>
#include <functional>

namespace {

/// The requests as words like "GET 13" and "SET 11", failed ones with a "!".
QString requestsInShort() {
    QStringList words;
    for (const std::string& request : TestHost::takeRequests()) {
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

/// A pop-up and the hands that can be laid on it.
struct Hands {
    CustomPopUpButton& popUp;

    [[nodiscard]] QAbstractItemView& list() const { return *popUp.view(); }
    [[nodiscard]] QPoint row(int index) const { return list().visualRect(popUp.model()->index(index, 0)).center(); }
    void open() const { QTest::keyClick(&popUp, Qt::Key_Space); }
    void keys(const std::vector<Qt::Key>& pressed) const {
        for (const Qt::Key key : pressed)
            QTest::keyClick(list().isVisible() ? static_cast<QWidget*>(&list()) : &popUp, key);
    }
    void assistive(int index, const QString& action) const {
        QAccessible::queryAccessibleInterface(&list())->child(index)->actionInterface()->doAction(action);
    }
    static void wheel(QWidget& over) {
        QWheelEvent turned({9, 9}, over.mapToGlobal(QPointF(9, 9)), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&over, &turned);
    }
};

using PopUpAction = std::function<void(const Hands&)>;
/// What is done to the pop-up, which shows Middle, and the level that is then in the device; -1: no request follows.
const std::vector<std::tuple<const char*, PopUpAction, int>> kPopUpActions{
    {"click, click",
        [](const Hands& h) {
            QTest::mouseClick(&h.popUp, Qt::LeftButton);
            QTest::mouseMove(h.list().viewport(), h.row(1), 9);
            QTest::mouseMove(h.list().viewport(), h.row(2));
            QTest::mouseClick(h.list().viewport(), Qt::LeftButton, {}, h.row(2));
        },
        2},
    {"press, drag, release",
        [](const Hands& h) {
            QTest::mousePress(&h.popUp, Qt::LeftButton);
            QTest::mouseMove(h.list().viewport(), h.row(1), 9);
            QTest::mouseMove(h.list().viewport(), h.row(0), 9);
            QTest::mouseRelease(h.list().viewport(), Qt::LeftButton, {}, h.row(0), 9);
        },
        0},
    {"list, Up, Enter",
        [](const Hands& h) {
            h.open(), h.keys({Qt::Key_Up, Qt::Key_Return});
        },
        0},
    {"list, Enter", [](const Hands& h) { h.open(), h.keys({Qt::Key_Enter}); }, 1},
    {"Down", [](const Hands& h) { h.keys({Qt::Key_Down}); }, 2},
    {"Up", [](const Hands& h) { h.keys({Qt::Key_Up}); }, 0},
    {"Home", [](const Hands& h) { h.keys({Qt::Key_Home}); }, 0},
    {"End", [](const Hands& h) { h.keys({Qt::Key_End}); }, 2},
    {"letter", [](const Hands& h) { h.keys({Qt::Key_L}); }, 2},
    {"browse, Escape, letter",
        [](const Hands& h) {
            h.open(), h.keys({Qt::Key_Down, Qt::Key_Escape, Qt::Key_H});
        },
        0},
    {"assistive, closed", [](const Hands& h) { h.assistive(2, QAccessibleActionInterface::toggleAction()); }, 2},
    {"assistive, open", [](const Hands& h) { h.open(), h.assistive(0, QAccessibleActionInterface::pressAction()); }, 0},
    {"assistive, current", [](const Hands& h) { h.assistive(1, QAccessibleActionInterface::pressAction()); }, 1},
    {"browse, Escape",
        [](const Hands& h) {
            h.open(), h.keys({Qt::Key_Up, Qt::Key_Escape});
        },
        -1},
    {"browse, Escape, foreign letter",
        [](const Hands& h) {
            h.open(), h.keys({Qt::Key_Up, Qt::Key_Escape, Qt::Key_Z});
        },
        -1},
    {"browse, press elsewhere",
        [](const Hands& h) {
            h.open(), h.keys({Qt::Key_Up});
            QTest::mouseClick(h.list().window(), Qt::LeftButton, {}, {-40, 300});
        },
        -1},
    {"browse, hidden by the program",
        [](const Hands& h) {
            h.open(), h.keys({Qt::Key_Up});
            h.popUp.hidePopup();
        },
        -1},
    {"foreign letter", [](const Hands& h) { h.keys({Qt::Key_Z}); }, -1},
    {"wheel",
        [](const Hands& h) {
            h.popUp.clearFocus(), Hands::wheel(h.popUp);
            h.popUp.setFocus(), Hands::wheel(h.popUp);
            h.open(), Hands::wheel(*h.list().viewport()), h.keys({Qt::Key_Escape});
        },
        -1},
    {"the list's selection",
        [](const Hands& h) { // as newer toolkits move it by themselves
            h.list().selectionModel()->select(h.popUp.model()->index(0, 0), QItemSelectionModel::ClearAndSelect);
            h.popUp.hide(), h.popUp.show();
            h.open(), h.keys({Qt::Key_Escape});
        },
        -1},
    {"filled and selected by the program",
        [](const Hands& h) {
            h.popUp.removeAllItems();
            h.popUp.addItemsWithTitles({"One", "Two", "Three", "Four"});
            for (const int index : {3, -1, 9, 2}) h.popUp.selectItemAtIndex(index);
        },
        -1},
    {"empty, opened", [](const Hands& h) { h.popUp.removeAllItems(), h.popUp.showPopup(); }, -1},
    {"another look",
        [](const Hands& h) {
            h.popUp.setFont(QFont("DejaVu Sans", 30));
            h.popUp.setPalette(Qt::yellow);
            QStyle* other = QStyleFactory::create("Windows");
            other->setParent(&h.popUp);
            h.popUp.setStyle(other);
            for (const auto type : {QEvent::LanguageChange, QEvent::LocaleChange, QEvent::ScreenChangeInternal}) {
                QEvent change(type);
                QCoreApplication::sendEvent(&h.popUp, &change);
                QCoreApplication::sendEvent(&h.list(), &change);
            }
            h.popUp.hide(), h.popUp.show();
        },
        -1},
};

QPoint knob(const QSlider& slider, int value) {
    return knobRect(knobDistance(slider.width()) * value / 255).center();
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
        TestHost::take();
        settings.view().viewDidLoad();
        QCOMPARE(TestHost::take().front(), "release");
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
            const auto held = [at = byte] { return int{device().audio[at]}; };
            TestHost::take();
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
        TestHost::take();
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

    void onlyAChoiceActs_data() {
        QTest::addColumn<std::size_t>("row");
        for (std::size_t i = 0; i < kPopUpActions.size(); ++i) QTest::newRow(std::get<0>(kPopUpActions[i])) << i;
    }
    void onlyAChoiceActs() {
        QFETCH(std::size_t, row);
        const auto& [name, act, level] = kPopUpActions[row];
        QString menu; // "o" for opening, "c" for closing, "!" for requests
        const SettingsWindow settings;
        const Hands hands{settings.control<CustomPopUpButton>("PopupRecordQuality")};
        hands.popUp.setFocus();
        connect(&hands.popUp, &CustomPopUpButton::menuWillOpen, [&] { menu += 'o'; });
        connect(&hands.popUp, &CustomPopUpButton::menuDidClose, [&] { menu += 'c'; });
        TestHost::take();
        device().onRequest = [&, note = device().onRequest](const RecordedRequest& request) {
            menu += menu.endsWith('!') ? "" : "!";
            note(request);
        };
        act(hands);
        QTest::qWait(20); // what the toolkit does later
        QCOMPARE(requestsInShort(), level < 0 ? "" : "GET 11, GET 11, SET 11, GET 11");
        QCOMPARE(device().settings[8] >> 4, std::max(level, 0) + (level < 0 ? 1 : 0));
        QVERIFY2(QRegularExpression("^(oc)*!?$").match(menu).hasMatch(), qPrintable(menu));
        QVERIFY(!hands.list().isVisible());
        QCOMPARE(hands.list().currentIndex().row(), hands.popUp.currentIndex());
        QCOMPARE(hands.list().selectionModel()->selectedIndexes().value(0).row(), hands.popUp.currentIndex());
        if (level < 0) return;
        QCOMPARE(hands.popUp.currentIndex(), level);
        QCOMPARE(settings.control("QualityImage").accessibleDescription(), hands.popUp.itemText(level));
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
        QCOMPARE(settings.view().outlets().size(), std::size_t{16});
        for (const OutletBase* outlet : settings.view().outlets())
            QVERIFY2(settings.window().findChild<QWidget*>(QString::fromLatin1(outlet->name())), outlet->name());
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
