#pragma once

#include <QObject>

/// What the application as a whole does.
class AppDelegate : public QObject {
    Q_OBJECT

public slots:
    // Start-up is done by the settings window when it has been loaded; at the end nothing is saved and the
    // device is not touched.
    void applicationDidFinishLaunching() {}
    void applicationWillTerminate() {}

    /// Runs a new About window modally.
    void ShowAboutWindow(QObject* sender);
};
