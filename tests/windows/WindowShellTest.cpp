// Modal runs, the About and alert windows, the end of the program, and what stops it.

#include "AboutViewController.h"
#include "ApplicationMain.h"
#include "Bundle.h"
#include "Log.h"
#include "ModalRun.h"
#include "OpenWindow.h"

#include <QAccessible>
#include <QAction>
#include <QClipboard>
#include <QLibraryInfo>
#include <QProcess>
#include <QTranslator>
#include <QVersionNumber>

namespace {

/// The ways in which a user ends one of the small windows.
const std::vector<std::pair<const char*, std::function<void(QWidget&)>>> kWaysToDismiss{
    {"button", [](QWidget& w) { QTest::mouseClick(w.findChild<QPushButton*>(), Qt::LeftButton); }},
    {"Enter", [](QWidget& w) { QTest::keyClick(&w, Qt::Key_Return); }},
    {"Escape", [](QWidget& w) { QTest::keyClick(&w, Qt::Key_Escape); }},
    {"window frame", [](QWidget& w) { w.close(); }},
};

constexpr auto kIndex = "Main/Main.json";
constexpr auto kSettings = "Main/settings-window.ui";
/// Name of the row, file, what is replaced there by what, and the end of the line that it stops with.
const std::vector<std::array<const char*, 5>> kDamages{{"index", kIndex, "{", "", " \"Main\" is missing or damaged"},
    {"identifier", kIndex, "\"Settings Window Controller\": {", "\"Other\": {",
        " \"Main\" has no controller \"Settings Window Controller\""},
    {"controller's class", kIndex, "\"WindowController\"", "\"Nothing\"", ": unknown controller class \"Nothing\""},
    {"wrong controller", kIndex, "\"WindowController\"", "\"AboutViewController\"",
        ": \"Settings Window Controller\" is a AboutViewController, not a window controller"},
    {"wrong content", kIndex, "\"ViewController\"", "\"WindowController\"",
        ": WindowController does not control a window's content"},
    {"no file", kIndex, "settings-window.ui", "none.ui", " bundle:Main/none.ui: No such file or directory"},
    {"unknown class", kSettings, "class=\"CustomSliderCell2\"", "class=\"CustomSliderCell3\"",
        ": unknown class CustomSliderCell3 of SliderHmdiAuxVolume"},
    {"unknown handler", kSettings, ">ChangeHeadphoneVolume<", ">ChangeNothing<",
        ": no handler ChangeNothing for SliderHeadphoneVolume"}};

/// All that reaches the settings window's controls while another window runs modally.
void meddle(const SettingsWindow& settings) {
    const auto assistive = [&](const char* name) {
        return QAccessible::queryAccessibleInterface(&settings.control(name));
    };
    assistive("SliderMicrophoneVolume")->valueInterface()->setCurrentValue(3);
    for (const char* button : {"HdcpOnButton", "HdcpOffButton", "AboutButton", "QuitButton"})
        assistive(button)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    assistive("HdcpOnButton")->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
    assistive("PopupRecordQuality")
        ->child(0)
        ->child(2)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    popUp.showPopup();
    QTest::keyClick(&popUp, Qt::Key_End);
    QTest::keyClick(&settings.control("SliderHmdiAuxVolume"), Qt::Key_Home);
    for (QAction* action : settings.window().actions()) action->trigger();
}

/// What the settings window's controls show.
std::string shown(const SettingsWindow& settings) {
    QString values;
    for (const QWidget* control : settings.window().findChildren<QWidget*>()) {
        if (const QMetaProperty edited = control->metaObject()->userProperty(); edited.isValid())
            values += edited.read(control).toString() + ' ';
    }
    return values.toStdString();
}

QString aboutVersion(AppDelegate& delegate) {
    QString shown;
    whenShown(QStringLiteral("AboutWindow"), [&shown](QWidget& about) {
        shown = about.findChild<QLabel*>(QStringLiteral("LabelVersionString"))->text();
        stopModal();
    });
    delegate.ShowAboutWindow(nullptr);
    return shown;
}

} // namespace

class WindowShellTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
    void init() { TestHost::reset(); }

    void everyWayEndsTheModalRun_data() {
        QTest::addColumn<QString>("window");
        QTest::addColumn<int>("way");
        for (const char* window : {"AboutWindow", "AlertWindow"}) {
            for (std::size_t way = 0; way < kWaysToDismiss.size(); ++way)
                QTest::addRow("%s by %s", window, kWaysToDismiss[way].first) << window << static_cast<int>(way);
        }
    }
    void everyWayEndsTheModalRun() {
        QFETCH(QString, window);
        QFETCH(int, way);
        SettingsWindow settings;
        for (int time = 0; time < 2; ++time) { // a fresh window each time
            settings.window().activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&settings.window()));
            bool shown = false;
            whenShown(window, [&](QWidget& small) {
                shown = true;
                QVERIFY(QTest::qWaitForWindowActive(&small));
                QCOMPARE(QApplication::activeModalWidget(), &small);
                kWaysToDismiss[static_cast<std::size_t>(way)].second(small);
            });
            if (window == "AboutWindow")
                QTest::keyClick(&settings.window(), Qt::Key_F1);
            else
                settings.view().showAlertWindow(nullptr);
            QVERIFY(shown);
            QVERIFY(!QApplication::activeModalWidget()); // nor is the program ended by it
        }
    }

    void theSettingsWindowIsInertBehindAnother_data() {
        QTest::addColumn<bool>("alert");
        QTest::newRow("About") << false;
        QTest::newRow("alert after a failed reconnect") << true;
    }
    void theSettingsWindowIsInertBehindAnother() {
        QFETCH(bool, alert);
        const ChildEnd end = runInChild([alert] {
            SettingsWindow settings;
            auto& groove = settings.control<QSlider>("SliderHeadphoneVolume");
            QTest::mousePress(&groove, Qt::LeftButton, {}, {groove.width() - 9, 34});
            if (alert) device().unplug();
            const std::string before = shown(settings);
            whenShown(alert ? "AlertWindow" : "AboutWindow", [&](QWidget& small) {
                TestHost::take();
                meddle(settings);
                QTest::qWait(600); // a groove that is held repeats after half a second
                QVERIFY(small.isVisible());
                for (const auto& entry : TestHost::takeRequests()) systemLog("%s", entry.c_str());
                systemLog(shown(settings) == before ? "inert" : "%s", shown(settings).c_str());
                small.close();
            });
            if (alert)
                settings.view().TurnOffHdcp(nullptr);
            else
                settings.delegate.ShowAboutWindow(nullptr);
            QTest::qWait(150); // nor does it repeat afterwards
            systemLog("%d", groove.value());
            std::_Exit(98);
        });
        QCOMPARE(end.status, alert ? 0 : 98);
        const auto& journal = end.journal;
        QVERIFY(std::ranges::find(journal, "log inert") == journal.end() - (alert ? 1 : 2));
        if (!alert) QCOMPARE(journal.back(), "log 144"); // a page above the device's 128
    }

    void theAlertCanBeReadAndCopied() {
        const SettingsWindow settings;
        whenShown(QStringLiteral("AlertWindow"), [](QWidget& alert) {
            QList<QLabel*> texts = alert.findChildren<QLabel*>(QRegularExpression("^Label(?!Step)"));
            QCOMPARE(texts.size(), 6);
            for (QLabel* text : texts) {
                QApplication::clipboard()->setText("nothing copied");
                QTest::keyClick(text, Qt::Key_A, Qt::ControlModifier);
                QTest::keyClick(text, Qt::Key_C, Qt::ControlModifier);
                QVERIFY2(text->text().contains(QApplication::clipboard()->text()), qUtf8Printable(text->text()));
            }
            for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_Escape}) {
                for (const bool pressed : {true, false}) // as a key that was held down before repeats
                    QTest::simulateEvent(alert.findChild<QPushButton*>(), pressed, key, {}, {}, true);
                QVERIFY2(alert.isVisible(), qPrintable(QKeySequence(key).toString()));
            }
            QTest::keyClick(alert.findChild<QPushButton*>(), Qt::Key_Return); // pressed anew
        });
        settings.view().showAlertWindow(nullptr);
    }

    void stopModalEndsTheInnermostRun() {
        stopModal(); // none
        QWidget outer;
        QWidget inner;
        bool innerEnded = false;
        QTimer::singleShot(0, &outer, [&] {
            QTimer::singleShot(0, &inner, stopModal);
            runModalForWindow(inner);
            innerEnded = true;
            QVERIFY(outer.isVisible());
            QTimer::singleShot(0, &outer, stopModal);
        });
        runModalForWindow(outer);
        QVERIFY(innerEnded);
        QVERIFY(outer.isVisible()); // the run's end does not close its window
    }

    void aboutShowsTheVersion() {
        AppDelegate delegate;
        QCOMPARE(aboutVersion(delegate), "Version " TAVRO_VERSION);
        QCOMPARE(aboutVersion(delegate), "Version " TAVRO_VERSION);
        ChangedBundle bundle;
        for (const QByteArray information : {"{}", R"({"CFBundleShortVersionString": 3})", "[]", ""}) {
            bundle.write("Info.json", information);
            QCOMPARE(aboutVersion(delegate), QString::fromUtf8("–")); // as described
        }
        bundle.write("Info.json", R"({"CFBundleShortVersionString": "3.0.1"})");
        QCOMPARE(aboutVersion(delegate), "Version 3.0.1");
        for (QTranslator* translator : qApp->findChildren<QTranslator*>())
            QCoreApplication::removeTranslator(translator);
        QCOMPARE(aboutVersion(delegate), "VERSION 3.0.1");
        for (QTranslator* translator : qApp->findChildren<QTranslator*>())
            QCoreApplication::installTranslator(translator);
    }

    void qtsOwnMessages() {
        TestHost::take();
        for (const auto type : {QtDebugMsg, QtInfoMsg, QtWarningMsg, QtCriticalMsg, QtFatalMsg})
            logQtMessage(type, {}, QString::number(type));
        const std::vector<std::string> worthALine{"log 2", "log 3"}; // critical and fatal
        QCOMPARE(TestHost::take(), worthALine);
    }

    void theEndOfTheDisplayIsAnEnd_data() {
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("reconnect");
        QTest::addColumn<int>("status");
        const QString x11 = "The X11 connection broke (error 1). Did the X11 server die?";
        const QString wayland = "The Wayland connection broke. Did the Wayland compositor die?";
        QTest::newRow("X11") << x11 << true << 0;
        QTest::newRow("Wayland") << wayland << false << 0;
        const bool qtReconnects = QLibraryInfo::version() >= QVersionNumber(6, 5);
        QTest::newRow("Wayland, and Qt connects again") << wayland << true << (qtReconnects ? 3 : 0);
    }
    void theEndOfTheDisplayIsAnEnd() {
        QFETCH(QString, message);
        QFETCH(bool, reconnect);
        const ChildEnd end = runInChild([&] {
            if (reconnect) qputenv("QT_WAYLAND_RECONNECT", "1");
            logQtMessage(QtWarningMsg, {}, message);
            std::_Exit(3); // lives on
        });
        QTEST(end.status, "status");
    }

    void qtsTranslationsComeWithOursOnly() {
        const QTemporaryDir folder;
        const auto before = qApp->findChildren<QTranslator*>();
        for (const auto& [language, direction] : {std::pair("ar", Qt::LeftToRight), {"de", Qt::RightToLeft}}) {
            QFile table(folder.filePath(QStringLiteral("qtbase_%1.ts").arg(language)));
            QVERIFY(table.open(QIODevice::WriteOnly));
            table.write("<TS version=\"2.1\"><context><name>QGuiApplication</name><message>"
                        "<source>QT_LAYOUT_DIRECTION</source><translation>RTL</translation></message></context></TS>");
            table.close();
            QCOMPARE(QProcess::execute(
                         QLibraryInfo::path(QLibraryInfo::BinariesPath) + "/lrelease", {"-silent", table.fileName()}),
                0);
            QLocale::setDefault(QLocale(language));
            mainBundle::open(*qApp, folder.path());
            QCOMPARE(QGuiApplication::layoutDirection(), direction);
        }
        for (QTranslator* translator : qApp->findChildren<QTranslator*>())
            if (!before.contains(translator)) delete translator;
        QLocale::setDefault(QLocale::c());
        QCOMPARE(QGuiApplication::layoutDirection(), Qt::LeftToRight);
    }

    void theDesktopKnowsTheProgram() {
        QCOMPARE(QCoreApplication::applicationName(), "Tavro Setup Tool");
        QCOMPARE(QGuiApplication::desktopFileName(), TAVRO_APPLICATION_ID);
        QCOMPARE(QApplication::windowIcon().availableSizes().value(0), QSize(96, 96));
        QCOMPARE(QApplication::style()->name(), "fusion");
    }

    void backgroundsAreSeenAndDragTheirWindow() {
        SettingsWindow settings;
        QVERIFY(settings.view().MyMainImageView->isVisible());
        const WindowDescription main(QStringLiteral("Main"));
        for (const QString name : {"Settings", "Alert", "About"}) {
            const auto controller = main.instantiateWindowController(name + " Window Controller", &settings.delegate);
            auto& view = *controller->window()->findChild<BackgroundImageView*>();
            QVERIFY(view.mouseDownCanMoveWindow());
            for (const auto button : {Qt::LeftButton, Qt::RightButton}) {
                QMouseEvent press(QEvent::MouseButtonPress, {1, 1}, {1, 1}, button, button, {});
                QCoreApplication::sendEvent(&view, &press);
                QCOMPARE(press.isAccepted(), button == Qt::LeftButton); // what is taken starts a move
            }
            QCOMPARE(controller->window()->findChildren<BackgroundImageView*>().size(), 1);
            const QImage image = controller->window()->grab().toImage();
            QCOMPARE(view.pixmap().devicePixelRatio(), image.devicePixelRatio());
            int red = 0; // the pictures' glow, beside what stands on them
            for (int i = 0; i < image.width() * 100; i += 7) {
                const QPoint point(i % image.width(), i / image.width());
                if (view.childAt(point / image.devicePixelRatio()) == nullptr)
                    red = std::max(red, qRed(image.pixel(point)) - qBlue(image.pixel(point)));
            }
            QVERIFY2(red > 50, qPrintable(name));
        }
    }

    void windowsAreNotRequired() {
        ChangedBundle bundle;
        bundle.replace("Main/Main.json", R"("window": "about-window.ui",)", "");
        AppDelegate delegate;
        delegate.ShowAboutWindow(nullptr); // does nothing
        bundle.replace("Main/Main.json", R"("window": "alert-window.ui",)", "");
        device().unplug();
        const ChildEnd end = runInChild([] { const SettingsWindow settings; });
        QCOMPARE(end.status, 0); // at once
    }

    void damagedDescriptionsStop_data() {
        QTest::addColumn<std::size_t>("damage");
        for (std::size_t i = 0; i < kDamages.size(); ++i) QTest::newRow(kDamages[i][0]) << i;
    }
    void damagedDescriptionsStop() {
        QFETCH(std::size_t, damage);
        const auto& [name, file, before, after, line] = kDamages[damage];
        ChangedBundle bundle;
        bundle.replace(file, before, after);
        const ChildEnd end = runInChild([] { const SettingsWindow settings; });
        QVERIFY(end.aborted);
        QCOMPARE(end.journal.back(), std::string("log Fatal: window description") + line);
    }

    void aboutWithoutItsOutletStops() {
        ChangedBundle bundle;
        bundle.replace("Main/about-window.ui", "name=\"LabelVersionString\"", "name=\"Another\"");
        const ChildEnd end = runInChild([] { AppDelegate().ShowAboutWindow(nullptr); });
        QVERIFY(end.aborted);
        QCOMPARE(end.journal.back(), "log Fatal: outlet LabelVersionString is not connected");
    }
};

QTEST_MAIN(WindowShellTest)
#include "WindowShellTest.moc"
