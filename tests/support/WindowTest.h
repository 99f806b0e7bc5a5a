#pragma once

// For all tests of windows: the window, modal ones, changed resources, and pictures.

#include "AppDelegate.h"
#include "ApplicationMain.h"
#include "Bundle.h"
#include "DescribedClasses.h"
#include "TestHost.h"
#include "ViewController.h"
#include "WindowDescription.h"

#include <QtTest>
#include <QtWidgets>

/// The settings window as the program opens it.
struct SettingsWindow {
    SettingsWindow()
        : controller(WindowDescription(QStringLiteral("Main"))
                         .instantiateWindowController(QStringLiteral("Settings Window Controller"), &delegate)) {
        window().show();
        window().activateWindow();
        (void)QTest::qWaitForWindowActive(&window()); // tests fail later if it is not
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

/// Calls `act` with the next window that runs modally.
inline void whenModal(std::function<void(QWidget&)> act) {
    QTimer::singleShot(1, qApp, [act = std::move(act)] {
        if (QWidget* window = QApplication::activeModalWidget())
            act(*window);
        else
            whenModal(act);
    });
}

inline void turnWheel(
    QWidget& over, QPoint angle, QPoint pixels = {}, Qt::KeyboardModifiers modifiers = {}, bool inverted = false) {
    QWheelEvent turned(
        {9, 9}, over.mapToGlobal(QPointF(9, 9)), pixels, angle, {}, modifiers, Qt::NoScrollPhase, inverted);
    QCoreApplication::sendEvent(&over, &turned);
}

/// Changes a property of a control in all windows that are made from that .ui file afterwards.
inline void changeDescription(const QString& file, const QString& control, const char* property, const QString& value) {
    MakeWindow& make = describedWindows()[file];
    make = [=, whole = make] {
        auto window = whole();
        window->findChild<QObject*>(control)->setProperty(property, value);
        return window;
    };
}

/// The content of a built-in resource, empty if there is none.
inline QByteArray resource(const QString& path) {
    QFile file(QStringLiteral(":/") + path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Overrides the program's resources as long as it exists.
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

/// A control, or a part of it, as its window shows it, scaled by `scale`.
inline QImage rendered(const QWidget& control, double scale = 1, QRect part = {}) {
    if (part.isNull()) part = control.rect();
    QWidget& window = *control.window();
    QImage image((QSizeF(part.size()) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    window.render(&image, {}, part.translated(control.mapTo(&window, QPoint())));
    return image;
}

/// The number of pixels of each colour.
inline QHash<QRgb, int> counted(const QImage& image) {
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) ++counts[image.pixel(x, y)];
    return counts;
}

/// The part of a picture that is brighter than its dark background.
inline QRect inked(const QImage& image) {
    QRegion bright;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) > 60) bright += QRect(x, y, 1, 1);
    return bright.boundingRect();
}
