#include "ApplicationMain.h"

#include "AboutViewController.h"
#include "Accessibility.h"
#include "AlertViewController.h"
#include "AppDelegate.h"
#include "Bundle.h"
#include "DescribedClasses.h"
#include "FatalStop.h"
#include "HeldKeys.h"
#include "Log.h"
#include "Look.h"
#include "StandardStreams.h"
#include "ViewController.h"
#include "WindowDescription.h"
#include "ui_about-window.h"
#include "ui_alert-window.h"
#include "ui_settings-window.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QVersionNumber>

#include <algorithm>
#include <array>
#include <clocale>
#include <csignal>
#include <cstdlib>

#include <unistd.h>

namespace {

/// Exits at SIGTERM and at the end of the session with status 0. Nothing is saved and no request is completed.
void endOnTerminate() {
    const auto end = [](int) { ::_exit(EXIT_SUCCESS); };
    (void)std::signal(SIGTERM, end); // fails only for unknown signals
    // Under nohup the program continues without its terminal.
    if (std::signal(SIGHUP, end) == SIG_IGN) (void)std::signal(SIGHUP, SIG_IGN);
    (void)std::signal(SIGPIPE, SIG_IGN); // a write to a closed display reports the failure itself
}

/// Whether Qt gives the reason why it can't use the display, in a warning. It ends the program next.
bool isAboutLostDisplay(const QString& message) {
    constexpr std::array kReasons{" connection broke", " connection experienced a fatal error",
        "could not connect to display", "Failed to create wl_display"};
    return std::ranges::any_of(kReasons, [&](const char* reason) { return message.contains(QLatin1String(reason)); });
}

/// Since 6.5 Qt connects again when a Wayland compositor restarts, if the session asks for that, as Plasma does.
bool reconnectsAfter(const QString& message) {
    return message.startsWith(QLatin1String("The Wayland ")) && qEnvironmentVariableIsSet("QT_WAYLAND_RECONNECT")
        && QLibraryInfo::version() >= QVersionNumber(6, 5);
}

void registerDescriptions() {
    registerDescribedWindow<QWidget, Ui::SettingsWindow>(QStringLiteral("settings-window.ui"));
    registerDescribedWindow<QDialog, Ui::AlertWindow>(QStringLiteral("alert-window.ui"));
    registerDescribedWindow<QDialog, Ui::AboutWindow>(QStringLiteral("about-window.ui"));
    registerDescribedClass<WindowController>();
    registerDescribedClass<ViewController>();
    registerDescribedClass<AlertViewController>();
    registerDescribedClass<AboutViewController>();
}

} // namespace

void logQtMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    const bool isAboutDisplay = type == QtWarningMsg && isAboutLostDisplay(message);
    if (type == QtCriticalMsg || type == QtFatalMsg || isAboutDisplay) systemLog("%s", qUtf8Printable(message));
    // At the end of a session the display may close first. Qt would then exit with status 1.
    if (isAboutDisplay && message.contains(QLatin1String(" connection broke")) && !reconnectsAfter(message))
        ::_exit(EXIT_SUCCESS);
}

void setUpApplication(QApplication& application) {
    // Not the display name: Qt appends that to window titles that don't end with it.
    QCoreApplication::setApplicationName(QStringLiteral("Tavro Setup Tool"));
    QGuiApplication::setDesktopFileName(QStringLiteral(TAVRO_APPLICATION_ID));
    mainBundle::open(application);
    setLook(application);
    registerDescriptions();
    installAccessibility();
    ignoreHeldKeys();
    QApplication::setWindowIcon(mainBundle::icon());
}

int applicationMain(int argc, char** argv) {
    openStandardStreams();
    endOnTerminate();
    (void)qInstallMessageHandler(logQtMessage);
    QApplication application(argc, argv);
    (void)std::setlocale(LC_NUMERIC, "C"); // for decimal points in the log: QApplication set the user's locale
    setUpApplication(application);
    AppDelegate delegate;
    const WindowDescription description(QStringLiteral("Main"));
    const auto controller = description.instantiateWindowController(description.initialController(), &delegate);
    if (!controller->window()) fatalStop("the initial controller has no window");
    controller->window()->show();
    delegate.applicationDidFinishLaunching();
    QObject::connect(&application, &QApplication::aboutToQuit, &delegate, &AppDelegate::applicationWillTerminate);
    // The application is not destroyed: Qt 6.4 would join its Wayland event thread, which can hang.
    std::exit(QApplication::exec());
}
