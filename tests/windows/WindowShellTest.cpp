// Modal runs, About and alert, messages of Qt, resources, and damaged descriptions.

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
#include <QProxyStyle>
#include <QTranslator>
#include <QVersionNumber>

#include <cstdlib>

namespace {

/// Sends keys through the window, because Space needs the focus.
void dismiss(QWidget& small, const QString& way) {
    if (way == "button") return QTest::mouseClick(small.findChild<QPushButton*>(), Qt::LeftButton);
    if (way == "program") return (void)small.close();
    if (way == "window frame") return (void)small.windowHandle()->close();
    QTest::keyClick(small.windowHandle(), QKeySequence(way)[0].key());
}

/// Text in the index, its replacement, and the message of the fatal stop.
const std::vector<std::array<const char*, 3>> kDamagedIndices{
    {"{", "", "window description \"Main\" is missing or damaged"},
    {"Settings Window", "Other", "window description \"Main\" has no controller \"Settings Window Controller\""},
    {"\"WindowController", "\"No", "window description: unknown controller class \"No\""},
    {"\"WindowController", "\"AboutViewController",
        "window description: \"Settings Window Controller\" is a AboutViewController, not a window controller"},
    {"\"View", "\"Window", "window description: WindowController does not control a window's content"},
    {"settings-window", "no", "window description: unknown window no.ui"}};
/// Window, control, property, its new value, and the message of the fatal stop.
const std::vector<std::array<const char*, 5>> kDamagedWindows{
    {"settings-window.ui", "LabelFwVersion", "action", "QuitApp",
        "window description: LabelFwVersion is of a kind without an action"},
    {"settings-window.ui", "SliderHeadphoneVolume", "action", "No",
        "window description: no handler No for SliderHeadphoneVolume"},
    {"about-window.ui", "LabelVersionString", "objectName", "No", "outlet LabelVersionString is not connected"}};

/// Opens all three windows.
void openAll() {
    const SettingsWindow settings;
    AppDelegate().ShowAboutWindow(nullptr);
    device().unplug();
    settings.view().TurnOnHdcp(nullptr); // shows the alert
}

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
                QString version;
                QWindow* owner = nullptr;
                whenModal([&](QWidget& small) { // without checks, whose failure would leave it open
                    shown = small.objectName();
                    version = small.findChildren<QLabel*>(QRegularExpression("Version")).first()->text();
                    (void)QTest::qWaitForWindowActive(&small);
                    owner = small.windowHandle()->transientParent();
                    dismiss(small, way);
                });
                open();
                QCOMPARE(shown + " by " + way, window + " by " + way);
                QCOMPARE(version, "Version " TAVRO_VERSION);
                QCOMPARE(owner, settings.window().windowHandle());
                QVERIFY(!QApplication::activeModalWidget()); // and the program continues
            }
        }
    }

    void theSettingsWindowIsInertBehindAnother() {
        for (const bool alert : {false, true}) { // the alert after a failed reconnect
            const ChildEnd end = runInChild([alert] {
                const SettingsWindow settings;
                auto& groove = settings.control<QSlider>("SliderHeadphoneVolume");
                QTest::mousePress(&groove, Qt::LeftButton, {}, {groove.width() - 9, 34});
                if (alert) device().unplug();
                QString before;
                const auto report = [&](const QString& small) {
                    const QString after = stateOf(settings.window());
                    systemLog("%s %zu requests, %s", qPrintable(small), TestHost::takeRequests().size(),
                        after == before ? "nothing changed" : qPrintable(after));
                };
                whenModal([&](QWidget& small) {
                    TestHost::take();
                    // Only the press acted before: it moved the slider from 128 by a page or more.
                    before = QStringLiteral("1 176 %1 255 false true false false ").arg(qMax(144, groove.value()));
                    meddle(*QAccessible::queryAccessibleInterface(&settings.window()));
                    for (QAction* action : settings.window().actions()) action->trigger();
                    settings.control<CustomPopUpButton>("PopupRecordQuality").showMenu();
                    QTest::qWait(600); // a held groove repeats after half a second
                    report(small.isVisible() ? "open" : "closed");
                    small.close();
                });
                alert ? settings.view().TurnOffHdcp(nullptr) : AppDelegate().ShowAboutWindow(nullptr);
                QTest::qWait(150); // nor does it repeat afterwards
                report("after");
            });
            QCOMPARE(std::ranges::count(end.journal, "log open 0 requests, nothing changed"), 1);
            QCOMPARE(std::ranges::count(end.journal, "log after 0 requests, nothing changed"), alert ? 0 : 1);
            QCOMPARE(end.status, alert ? 0 : 99);
        }
    }

    void theAlertCanBeReadAndCopied() {
        const SettingsWindow settings;
        whenModal([](QWidget& alert) {
            QList<QLabel*> texts = alert.findChildren<QLabel*>(QRegularExpression("^Label(?!Step)"));
            QCOMPARE(texts.size(), 7);
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
            QTest::keyClick(alert.findChild<QPushButton*>(), Qt::Key_Return); // a new press
        });
        settings.view().showAlertWindow(nullptr);
    }

    void stopModalEndsTheInnermostRun() {
        stopModal(); // none
        QWidget outer;
        QWidget inner;
        bool innerEnded = false;
        QTimer::singleShot(0, &outer, [&] {
            whenModal([&inner](QWidget& modal) {
                stopModal();
                QCOMPARE(&modal, &inner);
            });
            runModalForWindow(inner);
            innerEnded = true;
            QVERIFY(outer.isVisible());
            QTimer::singleShot(0, &outer, stopModal);
        });
        runModalForWindow(outer);
        QVERIFY(innerEnded);
        QVERIFY(outer.isVisible()); // the end of the run does not close its window
    }

    void theVersionMayBeMissing() {
        ChangedBundle bundle;
        for (const QByteArray information : {"{}", R"({"CFBundleShortVersionString": 3})", "[]", ""}) {
            bundle.write("Info.json", information);
            QVERIFY(!mainBundle::versionText());
            QVERIFY(WindowDescription("Main").instantiateController("About Window Controller"));
        }
        bundle.write("Info.json", R"({"CFBundleShortVersionString": "3.0.1"})");
        const auto translators = qApp->findChildren<QTranslator*>();
        for (QTranslator* translator : translators) QCoreApplication::removeTranslator(translator);
        QCOMPARE(mainBundle::versionText(), "VERSION 3.0.1");
        for (QTranslator* translator : translators) QCoreApplication::installTranslator(translator);
    }

    void qtsOwnMessages() {
        TestHost::take();
        for (const auto type : {QtDebugMsg, QtInfoMsg, QtWarningMsg, QtCriticalMsg, QtFatalMsg})
            logQtMessage(type, {}, QString::number(type));
        const std::vector<std::string> worthALine{"log 2", "log 3"}; // critical and fatal
        QCOMPARE(TestHost::take(), worthALine);
    }

    void onlyWaylandReconnects() {
        constexpr auto kX11 = "The X11 connection broke (error 1). Did the X11 server die?";
        constexpr auto kWayland = "The Wayland connection broke. Did the Wayland compositor die?";
        const bool qtReconnects = QLibraryInfo::version() >= QVersionNumber(6, 5);
        for (const auto& [message, status] : {std::pair(kX11, 0), {kWayland, qtReconnects ? 99 : 0}}) {
            const ChildEnd end = runInChild([text = message] {
                qputenv("QT_WAYLAND_RECONNECT", "1");
                logQtMessage(QtWarningMsg, {}, text);
            });
            QCOMPARE(end.status, status);
        }
    }

    void qtsTranslationsComeWithOursOnly() {
        ChangedBundle bundle;
        const QString lrelease = QLibraryInfo::path(QLibraryInfo::BinariesPath) + "/lrelease";
        for (const auto& [language, direction] : {std::pair("ar", Qt::LeftToRight), {"de", Qt::RightToLeft}}) {
            const QString table = QStringLiteral("qtbase_%1.ts").arg(language);
            bundle.write(table,
                "<TS version=\"2.1\"><context><name>QGuiApplication</name><message>"
                "<source>QT_LAYOUT_DIRECTION</source><translation>RTL</translation></message></context></TS>");
            QCOMPARE(QProcess::execute(lrelease, {"-silent", bundle.folder() + '/' + table}), 0);
            const ChildEnd end = runInChild([&, chosen = language] {
                QLocale::setDefault(QLocale(chosen));
                mainBundle::open(*qApp, bundle.folder());
                std::_Exit(QGuiApplication::layoutDirection());
            });
            QCOMPARE(end.status, static_cast<int>(direction));
        }
    }

    void picturesAreReadWithoutPlugins() {
        QVERIFY(mainBundle::imageNamed("no.png").isNull());
        const QString name = qApp->devicePixelRatio() > 1 ? "images/img_starBest@2x.png" : "images/img_starBest.png";
        const QByteArray whole = resource(name);
        ChangedBundle bundle;
        for (const QByteArray& bytes : {whole.mid(1), whole.chopped(20), whole}) {
            bundle.write(name, bytes);
            QCOMPARE(mainBundle::imageNamed("img_starBest.png").isNull(), bytes != whole);
        }
        QFile libraries("/proc/self/maps");
        QVERIFY(libraries.open(QIODevice::ReadOnly) && !libraries.readAll().contains("/imageformats/"));
    }

    void theDesktopKnowsTheProgram() {
        QCOMPARE(QGuiApplication::desktopFileName(), TAVRO_APPLICATION_ID);
        QList<int> icons;
        for (const QSize size : QApplication::windowIcon().availableSizes()) icons << size.width();
        QCOMPARE(icons, (QList<int>{16, 22, 24, 32, 48, 64, 128}));
        QCOMPARE(qobject_cast<QProxyStyle*>(QApplication::style())->baseStyle()->name(), "fusion");
    }

    void backgroundsAreSeen() {
        AppDelegate delegate;
        const WindowDescription main(QStringLiteral("Main"));
        for (const QString name : {"Settings", "Alert", "About"}) {
            const auto controller = main.instantiateWindowController(name + " Window Controller", &delegate);
            auto& view = *controller->window()->findChild<BackgroundImageView*>();
            QMouseEvent press(QEvent::MouseButtonPress, {1, 1}, {1, 1}, Qt::RightButton, Qt::RightButton, {});
            QCoreApplication::sendEvent(&view, &press);
            QVERIFY(!press.isAccepted()); // only the left button drags
            const QImage image = controller->window()->grab().toImage();
            QCOMPARE(view.pixmap().devicePixelRatio(), image.devicePixelRatio());
            int red = 0; // of the glow, outside the controls
            for (int i = 0; i < image.width() * 100; i += 7) {
                const QPoint point(i % image.width(), i / image.width());
                if (view.childAt(point / image.devicePixelRatio()) == nullptr)
                    red = std::max(red, qRed(image.pixel(point)) - qBlue(image.pixel(point)));
            }
            QVERIFY2(red > 50, qPrintable(name));
        }
    }

    void damagedDescriptionsStop() {
        const auto lastWords = [](const ChildEnd& end) { return end.aborted ? end.journal.back() : "it continued"; };
        const QByteArray index = resource("Main/Main.json");
        for (const auto& [before, after, line] : kDamagedIndices) {
            ChangedBundle bundle;
            bundle.write("Main/Main.json", QByteArray(index).replace(before, after));
            QCOMPARE(lastWords(runInChild(openAll)), std::string("log Fatal: ") + line);
        }
        const auto whole = describedWindows();
        for (const auto& [file, control, property, value, line] : kDamagedWindows) {
            changeDescription(file, control, property, value);
            QCOMPARE(lastWords(runInChild(openAll)), std::string("log Fatal: ") + line);
            describedWindows() = whole;
        }
        ChangedBundle bundle; // without the small windows it continues
        bundle.write("Main/Main.json", QByteArray(index).replace("\"window\": \"a", "\"no\": \"a"));
        QCOMPARE(runInChild(openAll).status, 0);
    }
};

QTEST_MAIN(WindowShellTest)
#include "WindowShellTest.moc"
