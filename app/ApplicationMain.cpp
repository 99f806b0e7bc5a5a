#include "ApplicationMain.h"

#include "AboutViewController.h"
#include "Accessibility.h"
#include "AlertViewController.h"
#include "AppDelegate.h"
#include "Bundle.h"
#include "Colors.h"
#include "DescribedClasses.h"
#include "FatalStop.h"
#include "HeldKeys.h"
#include "Log.h"
#include "SliderGeometry.h"
#include "ViewController.h"
#include "WindowDescription.h"
#include "ui_about-window.h"
#include "ui_alert-window.h"
#include "ui_settings-window.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QPalette>
#include <QProxyStyle>
#include <QVersionNumber>

#include <clocale>
#include <csignal>
#include <cstdlib>

#include <unistd.h>

namespace {

QPalette darkPalette() {
    QPalette palette;
    const auto set = [&palette](QPalette::ColorRole role, const char* color) { palette.setColor(role, color); };
    set(QPalette::Window, "#0C0D10");
    set(QPalette::Base, "#0C0D10");
    set(QPalette::AlternateBase, "#141619");
    set(QPalette::WindowText, "#D0D0D1");
    set(QPalette::Text, "#D0D0D1");
    set(QPalette::Highlight, "#C92A30");
    set(QPalette::HighlightedText, "#FFFFFF");
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
    set(QPalette::Accent, "#C92A30"); // otherwise the desktop's
#endif
    set(QPalette::PlaceholderText, "#9AA0AA");
    set(QPalette::ToolTipBase, "#F3F1F0");
    set(QPalette::ToolTipText, "#141619");
    for (const auto role : {QPalette::WindowText, QPalette::Text})
        palette.setColor(QPalette::Disabled, role, kDisabledTextColor);
    return palette;
}

/// Fusion's hit area for a knob grows with the font's DPI; the drawn knob does not.
class FusionWithFixedKnobs : public QProxyStyle {
public:
    FusionWithFixedKnobs() : QProxyStyle(QStringLiteral("Fusion")) {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        const bool ofKnob = metric == PM_SliderLength || metric == PM_SliderThickness;
        return ofKnob ? kKnobSize : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

/// Exits at SIGTERM and at the end of the session with status 0. Nothing is saved and no request is completed.
void endOnTerminate() {
    const auto end = [](int) { ::_exit(EXIT_SUCCESS); };
    (void)std::signal(SIGTERM, end); // fails only for unknown signals
    // Under nohup the program continues without its terminal.
    if (std::signal(SIGHUP, end) == SIG_IGN) (void)std::signal(SIGHUP, SIG_IGN);
    (void)std::signal(SIGPIPE, SIG_IGN); // a write to a closed display reports the failure itself
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
    // At the end of a session the display may close first. Qt would then exit with status 1.
    if (type == QtWarningMsg && message.contains(QLatin1String(" connection broke")) && !reconnectsAfter(message))
        ::_exit(EXIT_SUCCESS);
    if (type == QtCriticalMsg || type == QtFatalMsg) systemLog("%s", qUtf8Printable(message));
}

void setUpApplication(QApplication& application) {
    QApplication::setStyle(new FusionWithFixedKnobs);
    QApplication::setPalette(darkPalette());
    // Not the display name: Qt appends that to window titles that don't end with it.
    QCoreApplication::setApplicationName(QStringLiteral("Tavro Setup Tool"));
    QGuiApplication::setDesktopFileName(QStringLiteral(TAVRO_APPLICATION_ID));
    mainBundle::open(application);
    registerDescriptions();
    installAccessibility();
    ignoreHeldKeys();
    QApplication::setWindowIcon(mainBundle::icon());
}

int applicationMain(int argc, char** argv) {
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
