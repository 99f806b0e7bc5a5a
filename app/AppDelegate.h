#pragma once

#include <QObject>

/// The actions of the application.
class AppDelegate : public QObject {
    Q_OBJECT

public slots:
    // The settings window's controller starts up when it is loaded. At the end nothing is saved.
    void applicationDidFinishLaunching() {}
    void applicationWillTerminate() {}

    /// Runs a new About window modally.
    void ShowAboutWindow(QObject* sender);
};
