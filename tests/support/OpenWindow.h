#pragma once

#include "AppDelegate.h"
#include "ChildProcess.h"
#include "DescribedClasses.h"
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

/// Once a window runs modally, does something with it.
inline void whenModal(std::function<void(QWidget&)> act) {
    QTimer::singleShot(1, qApp, [act = std::move(act)] {
        if (QWidget* window = QApplication::activeModalWidget())
            act(*window);
        else
            whenModal(act);
    });
}

/// From now on a control of the window of that .ui file has another value of a property.
inline void changeDescription(const QString& file, const QString& control, const char* property, const QString& value) {
    MakeWindow& make = describedWindows()[file];
    make = [=, whole = make] {
        auto window = whole();
        window->findChild<QObject*>(control)->setProperty(property, value);
        return window;
    };
}

/// Empty if the program has none of that name.
inline QByteArray resource(const QString& path) {
    QFile file(QStringLiteral(":/") + path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Puts changed resources in front of the program's own, until it goes.
class ChangedBundle {
public:
    ChangedBundle() { QDir::setSearchPaths(QStringLiteral("bundle"), {m_folder.path(), QStringLiteral(":/")}); }
    ~ChangedBundle() { QDir::setSearchPaths(QStringLiteral("bundle"), {QStringLiteral(":/")}); }

    [[nodiscard]] QString folder() const { return m_folder.path(); }
    void write(const QString& path, const QByteArray& content) {
        QVERIFY(QDir(m_folder.path()).mkpath(QFileInfo(path).path()));
        QFile changed(m_folder.filePath(path));
        QVERIFY(changed.open(QIODevice::WriteOnly));
        changed.write(content);
    }

private:
    QTemporaryDir m_folder;
};
