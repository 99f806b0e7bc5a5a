#pragma once

#include <QByteArray>
#include <QHash>
#include <QMetaObject>
#include <QMetaType>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>

/// Makes a controller's class known by name to window descriptions. Its constructor must be Q_INVOKABLE.
template <class Class>
void registerDescribedClass() {
    qRegisterMetaType<Class*>();
}

/// The meta-object of a registered class, absent for any other name.
inline const QMetaObject* describedClass(const QByteArray& name) {
    return QMetaType::fromName(name + '*').metaObject();
}

using MakeWindow = std::function<std::unique_ptr<QWidget>()>;

/// The functions that make the registered windows, by the name of the .ui file.
inline QHash<QString, MakeWindow>& describedWindows() {
    static QHash<QString, MakeWindow> windows;
    return windows;
}

/// Makes a window known to window descriptions. `Window` is the class at the top of the .ui file, `Form` the class that
/// Qt's uic writes for it.
template <class Window, class Form>
void registerDescribedWindow(const QString& file) {
    describedWindows()[file] = [] {
        auto window = std::make_unique<Window>();
        Form().setupUi(window.get());
        return window;
    };
}

/// A custom control that completes itself after the description has made it with all its items.
class MadeFromDescription {
public:
    virtual ~MadeFromDescription() = default;
    virtual void didDecode() = 0;
};
