#pragma once

#include "ContentController.h"

#include <QObject>
#include <QWidget>

#include <memory>

/// Owns a window and the controller of its content.
class WindowController : public QObject {
    Q_OBJECT

public:
    Q_INVOKABLE WindowController() = default;

    /// Absent when the description gives this controller no window.
    [[nodiscard]] QWidget* window() const { return m_window.get(); }
    [[nodiscard]] ContentController* contentController() const { return m_content.get(); }

    void setWindow(std::unique_ptr<QWidget> window) { m_window = std::move(window); }
    void setContentController(std::unique_ptr<ContentController> content) { m_content = std::move(content); }

private:
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<ContentController> m_content; ///< destroyed before the window it works on
};
