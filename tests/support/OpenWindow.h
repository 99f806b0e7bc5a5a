#pragma once

#include "AppDelegate.h"
#include "ChildProcess.h"
#include "TestHost.h"
#include "ViewController.h"
#include "WindowDescription.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

/// The settings window as the program opens it.
struct SettingsWindow {
    SettingsWindow()
        : controller(WindowDescription(QStringLiteral("Main"))
                         .instantiateWindowController(QStringLiteral("Settings Window Controller"), &delegate)) {
        window().show();
        window().activateWindow();
        (void)QTest::qWaitForWindowActive(&window()); // keys that need it tell
    }
    [[nodiscard]] ViewController& view() const {
        return dynamic_cast<ViewController&>(*controller->contentController());
    }
    [[nodiscard]] QWidget& window() const { return *controller->window(); }
    template <class Control = QWidget>
    [[nodiscard]] Control& control(const char* name) const {
        return *window().findChild<Control*>(QString::fromLatin1(name));
    }

    AppDelegate delegate;
    std::unique_ptr<WindowController> controller;
};

/// The visible window of that name, if there is one.
inline QWidget* visibleWindow(const QString& name) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == name && window->isVisible()) return window;
    }
    return nullptr;
}

/// Once a window of that name is up, does something with it.
inline void whenShown(const QString& name, std::function<void(QWidget&)> act) {
    QTimer::singleShot(1, qApp, [name, act = std::move(act)] {
        if (QWidget* window = visibleWindow(name))
            act(*window);
        else
            whenShown(name, act);
    });
}

/// Puts changed resources in front of the program's own, until it goes.
class ChangedBundle {
public:
    ChangedBundle() { QDir::setSearchPaths(QStringLiteral("bundle"), {m_folder.path(), QStringLiteral(":/")}); }
    ~ChangedBundle() { QDir::setSearchPaths(QStringLiteral("bundle"), {QStringLiteral(":/")}); }
    ChangedBundle(const ChangedBundle&) = delete;
    ChangedBundle& operator=(const ChangedBundle&) = delete;

    /// A resource with all `before` replaced by `after`, which must change it.
    void replace(const QString& path, const QByteArray& before, const QByteArray& after) {
        QFile original(QStringLiteral(":/") + path);
        QVERIFY(original.open(QIODevice::ReadOnly));
        QByteArray content = original.readAll();
        QVERIFY2(content.contains(before), before.constData());
        write(path, content.replace(before, after));
    }
    void write(const QString& path, const QByteArray& content) {
        QVERIFY(QDir(m_folder.path()).mkpath(QFileInfo(path).path()));
        QFile changed(m_folder.filePath(path));
        QVERIFY(changed.open(QIODevice::WriteOnly));
        changed.write(content);
    }

private:
    QTemporaryDir m_folder;
};
