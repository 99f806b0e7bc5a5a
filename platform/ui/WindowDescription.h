#pragma once

#include "WindowController.h"

#include <QJsonObject>
#include <QString>

#include <memory>

/// A set of windows with their controllers. The index in the bundle (`Main/Main.json` for "Main") gives each identifier
/// the class of its controller, its window's .ui file and the class of its content's controller. Classes and windows
/// are compiled in and registered by name.
///
/// The property "action" of a control or of a QAction names its handler: a slot that takes the sender, of the content's
/// controller or else of the responder. It runs at every action of the user, whether by mouse, wheel, keys or assistive
/// technology. Block a control's signals while showing a value, so that the handler does not run.
///
/// The program stops with the name of a missing or wrong part; for an outlet, at its first use.
class WindowDescription {
public:
    explicit WindowDescription(const QString& name);

    /// Loads the controller of that identifier with its window, new at every call.
    [[nodiscard]] std::unique_ptr<QObject> instantiateController(
        const QString& identifier, QObject* responder = nullptr) const;
    /// The same for a controller that must be a window controller.
    [[nodiscard]] std::unique_ptr<WindowController> instantiateWindowController(
        const QString& identifier, QObject* responder = nullptr) const;
    /// Loads a window and runs it modally. Does nothing if the controller has no window.
    void runModal(const QString& identifier) const;
    /// The window that opens at the start.
    [[nodiscard]] QString initialController() const;

private:
    void loadWindow(WindowController& controller, const QJsonObject& entry, QObject* responder) const;

    QString m_name;
    QJsonObject m_index;
};
