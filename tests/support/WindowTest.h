#pragma once

// For all tests of windows: the settings window, modal ones, the wheel, and pictures.

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
    SettingsWindow() {
        const WindowDescription main("Main");
        controller = main.instantiateWindowController("Settings Window Controller", &delegate);
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

/// Adds a row with a name to the data of a test.
template <class... Values>
void row(const char* name, const Values&... values) {
    (QTest::newRow(name) << ... << values);
}

/// Calls `act` with the next window that runs modally and still does a little later.
inline void whenModal(std::function<void(QWidget&)> act, bool again = false) {
    QTimer::singleShot(9, qApp, [act = std::move(act), again] {
        QWidget* window = QApplication::activeModalWidget();
        return again && window != nullptr ? act(*window) : whenModal(act, window != nullptr);
    });
}

/// Types as window systems report keys, with their text; held ones repeat three times.
inline void typeInto(QWidget& window, QKeyCombination keys, bool isHeld = false) {
    static int lastKey = 0;
    if (std::exchange(lastKey, keys.key()) == keys.key())
        QTest::qSleep(1); // a press at the time of the last release would be a repeat
    const Qt::KeyboardModifiers modifiers = keys.keyboardModifiers();
    QString text = keys.key() < 0x80 ? QString(QChar(char16_t(keys.key()))) : QString();
    if (!modifiers.testFlag(Qt::ShiftModifier)) text = text.toLower();
    if (modifiers.testFlag(Qt::ControlModifier)) // a control character
        std::ranges::transform(text, text.begin(), [](QChar key) { return QChar(key.unicode() & 0x1F); });
    const auto send = [&](bool isPress, bool isRepeat) {
        QTest::simulateEvent(window.windowHandle(), isPress, keys.key(), modifiers, text, isRepeat);
    };
    send(true, false);
    for (int repeat = 0; isHeld && repeat < 3; ++repeat) {
        send(false, true);
        send(true, true);
    }
    send(false, false);
    QCoreApplication::processEvents();
}

/// Returns whether the widget accepts the event.
inline bool turnWheel(QWidget& over, QPoint angle, QPoint pixels = {}, Qt::KeyboardModifiers modifiers = {}) {
    QWheelEvent turned({9, 9}, over.mapToGlobal(QPointF(9, 9)), pixels, angle, {}, modifiers, Qt::NoScrollPhase, false);
    turned.ignore();
    return QCoreApplication::sendEvent(&over, &turned) && turned.isAccepted();
}

/// A control, or a part of it, as its window shows it, scaled by `scale`.
inline QImage rendered(const QWidget& control, double scale = 1, QRect part = {}) {
    if (part.isNull()) part = control.rect();
    QWidget& window = *control.window();
    QImage image((QSizeF(part.size()) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    window.render(&image, {}, part.translated(control.mapTo(&window, QPoint())));
    return image;
}
