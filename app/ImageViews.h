#pragma once

#include <QLabel>

/// A background picture that holds a window's controls and drags the window. The picture keeps its size and
/// stands at its alignment; it fades into the window's colour.
class BackgroundImageView : public QLabel {
    Q_OBJECT

public:
    /// Whether a press on the picture followed by a drag moves the window.
    [[nodiscard]] virtual bool mouseDownCanMoveWindow() const { return true; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    explicit BackgroundImageView(QWidget* parent) : QLabel(parent) {}

    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
};

/// Background of the settings window.
class MyImageView : public BackgroundImageView {
    Q_OBJECT

public:
    Q_INVOKABLE explicit MyImageView(QWidget* parent) : BackgroundImageView(parent) {}
};

/// Background of the alert window.
class AlertImageView : public BackgroundImageView {
    Q_OBJECT

public:
    Q_INVOKABLE explicit AlertImageView(QWidget* parent) : BackgroundImageView(parent) {}
};

/// Background of the About window.
class AboutImageView : public BackgroundImageView {
    Q_OBJECT

public:
    Q_INVOKABLE explicit AboutImageView(QWidget* parent) : BackgroundImageView(parent) {}
};
