#include "CustomSliderCell.h"

#include "host/FatalStop.h"

#include <QPainterPath>
#include <QStyleOptionSlider>
#include <QStylePainter>

namespace {

// The knob's travel and the halo that sets it off from the bar.
constexpr int kKnobInset = 3;
constexpr int kKnobTop = 26;
constexpr int kKnobHeight = 17;
constexpr double kHaloWidth = 1.0;
constexpr double kHaloRadius = 3.0;
constexpr double kFocusRingGap = 3.0;
constexpr double kFocusRingWidth = 2.0;
constexpr double kFocusRingRadius = 5.0;

} // namespace

CustomSliderCell::CustomSliderCell(const QString& /*textCell*/)
    : DrawnSlider(TickSpacing::Twentieth, nullptr) {
    fatalStop("CustomSliderCell: unsupported initialiser init(textCell:)");
}
CustomSliderCell::CustomSliderCell(const QImage& /*imageCell*/)
    : DrawnSlider(TickSpacing::Twentieth, nullptr) {
    fatalStop("CustomSliderCell: unsupported initialiser init(imageCell:)");
}
CustomSliderCell2::CustomSliderCell2(const QString& /*textCell*/)
    : DrawnSlider(TickSpacing::Quarter, nullptr) {
    fatalStop("CustomSliderCell2: unsupported initialiser init(textCell:)");
}
CustomSliderCell2::CustomSliderCell2(const QImage& /*imageCell*/)
    : DrawnSlider(TickSpacing::Quarter, nullptr) {
    fatalStop("CustomSliderCell2: unsupported initialiser init(imageCell:)");
}

void DrawnSlider::drawBarInside(QPainter& context, const QRectF& bar, bool /*flipped*/) {
    setg_width(bar.width());
    QPainterPath track;
    track.addRoundedRect(trackRect(bar), kTrackRadius, kTrackRadius);
    context.fillPath(track, Qt::white);
}

void DrawnSlider::drawTickMarks(QPainter& context) const {
    context.setPen(QPen(Qt::white, kTickWidth, Qt::SolidLine, Qt::FlatCap));
    for (const double x : tickPositions(g_width(), radius_w(), m_spacing))
        context.drawLine(QPointF(x, kTickTop), QPointF(x, kTickBottom));
}

/// The style sees the knob's travel only, so that painting, tracking and keys agree on where the knob is.
void DrawnSlider::initStyleOption(QStyleOptionSlider* option) const {
    QSlider::initStyleOption(option);
    option->rect = QRect(kKnobInset, kKnobTop, width() - 2 * kKnobInset, kKnobHeight);
}

void DrawnSlider::drawKnob(QPainter& context) const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    option.subControls = QStyle::SC_SliderHandle;
    option.state &= ~QStyle::State_HasFocus; // the ring below shows it
    const QRectF knob = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    const auto grown = [&knob](double by) { return knob.adjusted(-by, -by, by, by); };
    const bool focused = hasFocus();
    context.setPen(focused ? QPen(Qt::white, kFocusRingWidth) : QPen(Qt::NoPen));
    context.setBrush(palette().alternateBase());
    if (focused)
        context.drawRoundedRect(grown(kFocusRingGap), kFocusRingRadius, kFocusRingRadius);
    else
        context.drawRoundedRect(grown(kHaloWidth), kHaloRadius, kHaloRadius);
    style()->drawComplexControl(QStyle::CC_Slider, &option, &context, this);
}

void DrawnSlider::paintEvent(QPaintEvent* /*event*/) {
    QPainter context(this);
    context.setRenderHint(QPainter::Antialiasing);
    drawBarInside(context, barRect(width()), false);
    drawTickMarks(context);
    drawKnob(context);
}
