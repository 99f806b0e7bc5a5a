#pragma once

#include <QLabel>
#include <QPushButton>

#include <optional>

/// A label that draws its picture at its own size and alignment, both mirrored in right-to-left layouts.
class MirroredImageView : public QLabel {
    Q_OBJECT

public:
    explicit MirroredImageView(QWidget* parent) : QLabel(parent) {}

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A background picture that contains a window's controls. Dragging it, or a label or card on it, moves the window. The
/// picture fades into the window's colour.
class BackgroundImageView : public MirroredImageView {
    Q_OBJECT

public:
    /// Whether a press on the picture followed by a drag moves the window.
    [[nodiscard]] virtual bool mouseDownCanMoveWindow() const { return true; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    explicit BackgroundImageView(QWidget* parent) : MirroredImageView(parent) {}

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    /// Leaves the move of the window to the window system.
    virtual void startMove();

private:
    std::optional<QPointF> m_pressed; ///< screen position, until the window moves or the button is released
};

/// Background of the settings window.
class MyImageView : public BackgroundImageView {
    Q_OBJECT

public:
    explicit MyImageView(QWidget* parent) : BackgroundImageView(parent) {}
};

/// Background of the alert window.
class AlertImageView : public BackgroundImageView {
    Q_OBJECT

public:
    explicit AlertImageView(QWidget* parent) : BackgroundImageView(parent) {}
};

/// Background of the About window.
class AboutImageView : public BackgroundImageView {
    Q_OBJECT

public:
    explicit AboutImageView(QWidget* parent) : BackgroundImageView(parent) {}
};

/// A text that can be selected and copied, also with the keyboard.
class SelectableLabel : public QLabel {
    Q_OBJECT

public:
    explicit SelectableLabel(QWidget* parent) : QLabel(parent) {
        setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
        setFocusPolicy(Qt::StrongFocus); // after the flags, which change it
    }
};

/// A disabled button used as a label. It lets the mouse through, so that the window can be dragged by it.
class LegendButton : public QPushButton {
    Q_OBJECT

public:
    explicit LegendButton(QWidget* parent) : QPushButton(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setEnabled(false);
        setFocusPolicy(Qt::NoFocus);
    }
};
