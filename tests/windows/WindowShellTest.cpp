// Modal runs, About and alert, the background, messages of Qt, resources, and damaged descriptions.

#include "ImageViews.h"
#include "ModalRun.h"
#include "WindowTest.h"
#include "WindowTexts.h"

namespace {

/// Sends keys through the window, because Space needs the focus.
void dismiss(QWidget& small, const QString& way) {
    if (way == "button") return QTest::mouseClick(small.findChild<QPushButton*>(), Qt::LeftButton);
    if (way == "program") return (void)small.close();
    if (way == "window frame") return (void)small.windowHandle()->close();
    QTest::keyClick(small.windowHandle(), QKeySequence(way)[0].key());
}

/// Replaces a resource of the program as long as it exists.
struct ChangedResource : QTemporaryDir {
    ChangedResource(const QString& name, const QByteArray& content) {
        QFile file(filePath(name));
        if (QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly)) file.write(content);
        QDir::setSearchPaths("bundle", {path(), ":/"});
    }
    ~ChangedResource() { QDir::setSearchPaths("bundle", {":/"}); }
};

/// Window, control, property, its new value, and the end of the program, empty if it continues.
const std::vector<std::array<const char*, 5>> kDamagedWindows{
    {"Settings", "LabelFwVersion", "action", "QuitApp",
        "fatal window description: LabelFwVersion is of a kind without an action"},
    {"Settings", "SliderHeadphoneVolume", "action", "No",
        "fatal window description: no handler No for SliderHeadphoneVolume"},
    {"Settings", "HdcpOffButton", "objectName", "No", "fatal outlet HdcpOffButton is not connected"},
    {"Settings", "ButtonHigh", "objectName", "No", ""}, // no code uses that outlet
    {"About", "LabelVersionString", "objectName", "No", "fatal outlet LabelVersionString is not connected"}};

/// Tries every action of assistive technology and a key on a part of a window.
// NOLINTNEXTLINE(misc-no-recursion): as deep as the window's controls
void meddle(QAccessibleInterface& part) {
    if (auto* value = part.valueInterface()) value->setCurrentValue(3);
    if (auto* actions = part.actionInterface()) {
        for (const QString& action : actions->actionNames()) actions->doAction(action);
    }
    if (auto* control = qobject_cast<QWidget*>(part.object())) QTest::keyClick(control, Qt::Key_Home);
    for (int i = 0; i < part.childCount(); ++i) meddle(*part.child(i));
}

/// The values of its controls, and whether a list is open.
QString stateOf(const QWidget& window) {
    QString values = QApplication::activePopupWidget() ? "open list " : "";
    for (const QWidget* control : window.findChildren<QWidget*>()) {
        if (control->property("action").isValid())
            values += control->metaObject()->userProperty().read(control).toString() + ' ';
    }
    return values;
}

} // namespace

class WindowShellTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
    void init() { TestHost::reset(); }

    void everyWayEndsTheModalRun() {
        const SettingsWindow settings;
        QWindow otherProgram;
        const std::vector<std::pair<QString, std::function<void()>>> openings{
            {"AboutWindow", [&] { QTest::keyClick(&settings.window(), Qt::Key_F1); }},
            {"AboutWindow", [&] { QTest::mouseClick(&settings.control("AboutButton"), Qt::LeftButton); }},
            {"AlertWindow",
                [&] {
                    otherProgram.show();
                    otherProgram.requestActivate();
                    QVERIFY(QTest::qWaitForWindowActive(&otherProgram) && !QApplication::activeWindow());
                    settings.view().showAlertWindow(nullptr);
                }},
        };
        for (const auto& [window, open] : openings) {
            for (const QString way : {"button", "program", "window frame", "Return", "Enter", "Space", "Esc"}) {
                settings.window().activateWindow();
                QVERIFY(QTest::qWaitForWindowActive(&settings.window()));
                QString shown;
                whenModal([&](QWidget& small) { // without checks, whose failure would leave it open
                    (void)QTest::qWaitForWindowActive(&small);
                    const bool isOwned = small.windowHandle()->transientParent() == settings.window().windowHandle();
                    shown = isOwned ? small.objectName() : "without owner";
                    dismiss(small, way);
                });
                open();
                QCOMPARE(shown + " by " + way, window + " by " + way);
                QVERIFY(!QApplication::activeModalWidget()); // and the program continues
            }
        }
        QCOMPARE(endOf([&] { settings.view().QuitApp(nullptr); }), "exit 0");
    }

    void theSettingsWindowIsInertBehindAnother() {
        for (const bool alert : {false, true}) { // the alert after a failed reconnect
            TestHost::reset();
            const SettingsWindow settings;
            auto& groove = settings.control<QSlider>("SliderHeadphoneVolume");
            QTest::mousePress(&groove, Qt::LeftButton, {}, {groove.width() - 9, 34});
            const QString before = stateOf(settings.window());
            if (alert) device().unplug();
            TestHost::take();
            whenModal([&](QWidget& small) {
                meddle(*QAccessible::queryAccessibleInterface(&settings.window()));
                for (QAction* action : settings.window().actions()) action->trigger();
                settings.control<CustomPopUpButton>("PopupRecordQuality").showMenu();
                QTest::qWait(600); // a held groove repeats after half a second
                QCOMPARE(stateOf(settings.window()), before);
                QVERIFY(small.isVisible());
                small.close();
            });
            QCOMPARE(
                endOf([&] { alert ? settings.view().TurnOffHdcp(nullptr) : AppDelegate().ShowAboutWindow(nullptr); }),
                alert ? "exit 0" : "");
            QTest::qWait(150); // nor does it repeat afterwards
            QCOMPARE(stateOf(settings.window()), before);
            QVERIFY(TestHost::takeRequests().empty());
        }
    }

    void theVersionMayBeMissing() {
        for (const char* information : {"{}", R"({"CFBundleShortVersionString": 3})", "[]", ""}) {
            const ChangedResource damaged("Info.json", information);
            QVERIFY(!mainBundle::versionText());
            QVERIFY(WindowDescription("Main").instantiateController("About Window Controller"));
        }
        const ChangedResource other("Info.json", R"({"CFBundleShortVersionString": "3.0.1"})");
        for (const QString name : {"About", "Alert"}) {
            const auto controller = WindowDescription("Main").instantiateWindowController(name + " Window Controller");
            QCOMPARE(
                controller->window()->findChildren<QLabel*>(QRegularExpression("Version"))[0]->text(), "Version 3.0.1");
        }
    }

    void qtsOwnMessages() {
        TestHost::take();
        for (const auto type : {QtDebugMsg, QtInfoMsg, QtWarningMsg, QtCriticalMsg, QtFatalMsg})
            logQtMessage(type, {}, QString::number(type));
        QCOMPARE(TestHost::take(), (std::vector<std::string>{"log 2", "log 3"})); // critical and fatal
        qputenv("QT_WAYLAND_RECONNECT", "1");
        const bool qtReconnects = QLibraryInfo::version() >= QVersionNumber(6, 5);
        for (const auto& [message, end] : {
                 std::pair("could not connect to display :1", ""),
                 {"Failed to create wl_display (No such file or directory)", ""},
                 {"The Wayland connection experienced a fatal error: Protocol error", ""},
                 {"The X11 connection broke (error 1). Did the X11 server die?", "exit 0"},
                 {"The Wayland connection broke. Did the Wayland compositor die?", qtReconnects ? "" : "exit 0"},
             }) {
            QCOMPARE(endOf([text = message] { logQtMessage(QtWarningMsg, {}, text); }), end);
            QCOMPARE(TestHost::take().front(), std::string("log ") + message);
        }
    }

    void picturesAreReadWithoutPlugins() {
        QVERIFY(mainBundle::imageNamed("no.png").isNull());
        const QString name = qApp->devicePixelRatio() > 1 ? "images/img_starBest@2x.png" : "images/img_starBest.png";
        QFile picture(":/" + name);
        QVERIFY(picture.open(QIODevice::ReadOnly));
        const QByteArray whole = picture.readAll();
        for (const QByteArray& bytes : {whole.mid(1), whole.chopped(20), whole}) {
            const ChangedResource changed(name, bytes);
            QCOMPARE(mainBundle::imageNamed("img_starBest.png").isNull(), bytes != whole);
        }
        QFile libraries("/proc/self/maps");
        QVERIFY(libraries.open(QIODevice::ReadOnly) && !libraries.readAll().contains("/imageformats/"));
    }

    void theDesktopKnowsTheProgram() {
        QCOMPARE(QGuiApplication::desktopFileName(), TAVRO_APPLICATION_ID);
        QCOMPARE(QApplication::windowIcon().availableSizes(),
            (QList<QSize>{{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}, {64, 64}, {128, 128}}));
        QCOMPARE(qobject_cast<QProxyStyle*>(QApplication::style())->baseStyle()->name(), "fusion");
    }

    void backgroundsAreSeen() {
        AppDelegate delegate;
        const WindowDescription main(QStringLiteral("Main"));
        for (const QString name : {"Settings", "Alert", "About"}) {
            const auto controller = main.instantiateWindowController(name + " Window Controller", &delegate);
            auto& view = *controller->window()->findChild<BackgroundImageView*>();
            const QImage image = controller->window()->grab().toImage();
            QCOMPARE(view.pixmap().devicePixelRatio(), image.devicePixelRatio());
            const auto shades = counted(image.copy(0, 0, image.width(), 12)).size(); // above the controls
            QVERIFY2(shades > 30, qPrintable(name));
        }
    }

    void backgroundMovesItsWindowByADrag() {
        struct MovedView : MyImageView {
            MovedView() : MyImageView(nullptr) {}
            void startMove() override { ++moves; }
            int moves = 0;
        } background;
        background.resize(200, 80);
        QFrame card(&background);
        QLabel label(QStringLiteral("text"), &card);
        LegendButton legend(&card);
        legend.move(0, 40);
        background.show();
        QWindow& window = *background.windowHandle();
        const int distance = QApplication::startDragDistance();
        for (const auto& [button, y, way, moves] : {std::tuple(Qt::LeftButton, 1, 0, 0),
                 {Qt::LeftButton, 1, distance - 1, 0}, {Qt::LeftButton, 1, distance, 1},
                 {Qt::LeftButton, 41, distance, 1}, {Qt::RightButton, 1, distance, 0}}) {
            background.moves = 0;
            QTest::mousePress(&window, button, {}, {1, y});
            for (int times = 0; times < 2; ++times) // the second one must not start another move
                QTest::mouseMove(&window, {1 + way + times * moves, y});
            QWidget elsewhere;
            QTimer::singleShot(0, qApp, stopModal);
            runModalForWindow(elsewhere); // during which the button is released
            QVERIFY(elsewhere.isVisible());
            QTest::mouseRelease(elsewhere.windowHandle(), button);
            QTest::mousePress(elsewhere.windowHandle(), Qt::LeftButton);
            QTest::mouseMove(&label, {99, 99});
            QCOMPARE(background.moves, moves);
            QTest::mouseRelease(elsewhere.windowHandle(), Qt::LeftButton);
        }
    }

    void damagedDescriptionsStop() {
        AppDelegate delegate;
        const auto endWith = [&delegate](const QString& description, const QString& controller) {
            return endOf(
                [&] { (void)WindowDescription(description).instantiateWindowController(controller, &delegate); });
        };
        const std::string start = "fatal window description";
        QCOMPARE(endWith("None", ""), start + " \"None\" is missing or damaged");
        const ChangedResource damaged("Damaged/Damaged.json", R"({"controllers": {
            "bare": {"class": "WindowController"}, "class": {"class": "No"}, "kind": {"class": "AboutViewController"},
            "window": {"class": "WindowController", "window": "no.ui", "content": "ViewController"},
            "content": {"class": "WindowController", "window": "about-window.ui", "content": "WindowController"}}})");
        for (const auto& [controller, end] : {std::pair("none", " \"Damaged\" has no controller \"none\""),
                 {"class", ": unknown controller class \"No\""}, {"window", ": unknown window no.ui"},
                 {"kind", ": \"kind\" is a AboutViewController, not a window controller"},
                 {"content", ": WindowController does not control a window's content"}})
            QCOMPARE(endWith("Damaged", controller), start + end);
        for (const auto& [window, control, property, value, end] : kDamagedWindows) {
            MakeWindow& make = describedWindows()[QString(window).toLower() + "-window.ui"];
            const MakeWindow whole = make;
            make = [&, name = control, key = property, text = value] {
                auto made = whole();
                made->findChild<QObject*>(name)->setProperty(key, text);
                return made;
            };
            QCOMPARE(endWith("Main", QString(window) + " Window Controller"), end);
            make = whole;
        }
        WindowDescription("Damaged").runModal("bare"); // returns at once, as there is no window
    }

    // The last one: these texts remain installed.
    void qtsTranslationsComeWithOursOnly() {
        const QString lrelease = QLibraryInfo::path(QLibraryInfo::BinariesPath) + "/lrelease";
        for (const auto& [language, direction] : {std::pair("ar", Qt::LeftToRight), {"de", Qt::RightToLeft}}) {
            const QString name = QStringLiteral("qtbase_%1.ts").arg(language);
            const ChangedResource table(name,
                "<TS version=\"2.1\"><context><name>QGuiApplication</name><message>"
                "<source>QT_LAYOUT_DIRECTION</source><translation>RTL</translation></message></context></TS>");
            QCOMPARE(QProcess::execute(lrelease, {"-silent", table.filePath(name)}), 0);
            QLocale::setDefault(QLocale(language));
            mainBundle::open(*qApp, table.path());
            QCOMPARE(QGuiApplication::layoutDirection(), direction);
        }
    }
};

QTEST_MAIN(WindowShellTest)
#include "WindowShellTest.moc"
