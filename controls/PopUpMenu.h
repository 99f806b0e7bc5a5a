#pragma once

#include <QElapsedTimer>
#include <QMenu>

#include <optional>

class QKeyEvent;
class QMouseEvent;

/// Whether a key is pressed together with Ctrl, Alt or Meta, which belong to shortcuts and to the window manager. In a
/// combo box Alt+Up is Up.
[[nodiscard]] bool isWithCommandKey(const QKeyEvent& event);

/// The menu of a pop-up, drawn with its items' attributed titles. It is used like the list of the toolkit's combo box,
/// but a click in motion, a double click and a key with Ctrl, Alt or Meta choose nothing.
class PopUpMenu : public QMenu {
public:
    explicit PopUpMenu(QWidget& face);

    /// Opens with the active item over the face. After a press of the mouse, at the time of its event, releases choose
    /// nothing for the double-click interval.
    void open(QAction* active, std::optional<quint64> pressedAt = {});

    /// The row that a key leads to from another one, which is the result of any other key; -1 is none. Page keys go
    /// `page` rows far. Letters typed within the toolkit's input interval are searched together.
    [[nodiscard]] int rowFor(const QKeyEvent& event, int from, int page);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* /*event*/) override {} // the active item stays active
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int rowStartingWith(const QString& text, int from);

    QWidget& m_face;
    std::optional<quint64> m_openedByPress; ///< in milliseconds, of the window system's time
    bool m_pressed = false;                 ///< on an item
    QString m_typed;
    QElapsedTimer m_typing; ///< since the last letter
};
