#pragma once

#include "SliderGeometry.h"

#include <QImage>
#include <QSlider>

class QPainter;

/// A slider in the dark style: a thin white bar with a row of ticks above it. It shows its value above the
/// knob while the pointer is over it or it has the focus. Handling is the toolkit's, except for the wheel.
/// Ticks follow the bar that was drawn last.
class DrawnSlider : public QSlider {
    Q_OBJECT

public:
    /// Width of the bar that was drawn last, in logical pixels; 0 before the first.
    [[nodiscard]] double g_width() const { return m_gWidth; }
    virtual void setg_width(double width) { m_gWidth = width; }
    /// Knob allowance in logical pixels: places the first tick and shortens their run.
    [[nodiscard]] double radius_w() const { return m_radiusW; }

    /// Draws the track in the bar's rectangle. It is the same whether flipped or not.
    void drawBarInside(QPainter& context, const QRectF& bar, bool flipped);
    void drawTickMarks(QPainter& context) const;

    [[nodiscard]] QSize sizeHint() const override { return kSmallestSlider; }
    [[nodiscard]] QSize minimumSizeHint() const override { return kSmallestSlider; }

protected:
    DrawnSlider(TickSpacing spacing, QWidget* parent) : QSlider(Qt::Horizontal, parent), m_spacing(spacing) {
        setAttribute(Qt::WA_Hover); // is drawn again when the pointer enters and leaves
        setFocusPolicy(Qt::StrongFocus); // a turn of the wheel does not move the focus
    }

    void paintEvent(QPaintEvent* event) override;
    void initStyleOption(QStyleOptionSlider* option) const override;
    void wheelEvent(QWheelEvent* event) override;

private:
    [[nodiscard]] QRect knob() const;
    [[nodiscard]] QString valueText() const;
    void drawKnob(QPainter& context) const;
    void drawValue(QPainter& context) const;

    TickSpacing m_spacing;
    double m_gWidth = 0;
    double m_radiusW = kKnobAllowance;
    int m_wheelRest = 0; ///< turn of the wheel short of a whole step, in units of a notch times its steps
};

/// With ticks at every twentieth of its travel.
class CustomSliderCell : public DrawnSlider {
    Q_OBJECT

public:
    /// As window descriptions make it.
    explicit CustomSliderCell(QWidget* parent) : DrawnSlider(TickSpacing::Twentieth, parent) {}
    // A slider of this kind is made from a window description only: these stop the program.
    [[noreturn]] explicit CustomSliderCell(const QString& textCell);
    [[noreturn]] explicit CustomSliderCell(const QImage& imageCell);
};

/// With ticks at every quarter of its travel.
class CustomSliderCell2 : public DrawnSlider {
    Q_OBJECT

public:
    /// As window descriptions make it.
    explicit CustomSliderCell2(QWidget* parent) : DrawnSlider(TickSpacing::Quarter, parent) {}
    // A slider of this kind is made from a window description only: these stop the program.
    [[noreturn]] explicit CustomSliderCell2(const QString& textCell);
    [[noreturn]] explicit CustomSliderCell2(const QImage& imageCell);
};
