#pragma once

#include "FatalStop.h"
#include "SliderGeometry.h"

#include <QImage>
#include <QSlider>

class QPainter;

/// A slider in the dark style: a thin white bar with a row of ticks above it. It shows its value above the knob while
/// the pointer is over it or it has the focus. Input is handled by QSlider, except for the wheel. The ticks depend on
/// the bar that was drawn last.
class DrawnSlider : public QSlider {
    Q_OBJECT

public:
    /// Width of the bar that was drawn last, in logical pixels; 0 before the first.
    [[nodiscard]] double g_width() const { return m_gWidth; }
    virtual void setg_width(double width) { m_gWidth = width; }
    /// Knob allowance in logical pixels: places the first tick and shortens their run.
    [[nodiscard]] double radius_w() const { return m_radiusW; }

    /// Draws the track in the bar's rectangle. `flipped` is ignored.
    void drawBarInside(QPainter& context, const QRectF& bar, bool flipped);
    void drawTickMarks(QPainter& context) const;

    [[nodiscard]] QSize sizeHint() const override { return kSmallestSlider; }
    [[nodiscard]] QSize minimumSizeHint() const override { return kSmallestSlider; }

protected:
    DrawnSlider(TickSpacing spacing, QWidget* parent) : QSlider(Qt::Horizontal, parent), m_spacing(spacing) {
        setAttribute(Qt::WA_Hover);      // repaints when the pointer enters or leaves
        setFocusPolicy(Qt::StrongFocus); // turning the wheel does not move the focus
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
    int m_wheelRest = 0; ///< angle times steps per notch that was not enough for a step
};

/// With ticks at every twentieth of its travel.
class CustomSliderCell : public DrawnSlider {
    Q_OBJECT

public:
    /// For window descriptions.
    explicit CustomSliderCell(QWidget* parent) : DrawnSlider(TickSpacing::Twentieth, parent) {}
    // Unsupported: these stop the program.
    [[noreturn]] explicit CustomSliderCell(const QString& /*textCell*/)
        : CustomSliderCell(static_cast<QWidget*>(nullptr)) {
        fatalStop("CustomSliderCell: unsupported initialiser init(textCell:)");
    }
    [[noreturn]] explicit CustomSliderCell(const QImage& /*imageCell*/)
        : CustomSliderCell(static_cast<QWidget*>(nullptr)) {
        fatalStop("CustomSliderCell: unsupported initialiser init(imageCell:)");
    }
};

/// With ticks at every quarter of its travel.
class CustomSliderCell2 : public DrawnSlider {
    Q_OBJECT

public:
    /// For window descriptions.
    explicit CustomSliderCell2(QWidget* parent) : DrawnSlider(TickSpacing::Quarter, parent) {}
    // Unsupported: these stop the program.
    [[noreturn]] explicit CustomSliderCell2(const QString& /*textCell*/)
        : CustomSliderCell2(static_cast<QWidget*>(nullptr)) {
        fatalStop("CustomSliderCell2: unsupported initialiser init(textCell:)");
    }
    [[noreturn]] explicit CustomSliderCell2(const QImage& /*imageCell*/)
        : CustomSliderCell2(static_cast<QWidget*>(nullptr)) {
        fatalStop("CustomSliderCell2: unsupported initialiser init(imageCell:)");
    }
};
