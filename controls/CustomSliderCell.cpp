#include "CustomSliderCell.h"

#include "AttributedString.h"
#include "Bundle.h"
#include "Colors.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainterPath>
#include <QStyleOptionSlider>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace {

constexpr double kHaloWidth = 1.0; // sets the knob off from the bar
constexpr double kHaloRadius = 3.0;
constexpr double kFocusRingGap = 2.0;
constexpr double kFocusRingWidth = 2.0;
constexpr double kFocusRingRadius = 5.0;
constexpr double kKnobRadius = 2.0;
constexpr double kOutlineInset = 1.5;
constexpr double kGlossInset = 2.5;
constexpr int kNotch = QWheelEvent::DefaultDeltasPerStep;
constexpr int kAnglePerPixel = 2; // for devices that report only pixels

const QColor kKnobOutline(0x09, 0x09, 0x0B);
const QColor kKnobGloss(255, 255, 255, 30);

QRectF grown(const QRectF& box, double by) {
    return box.adjusted(-by, -by, by, by);
}

/// #F64D58 in the middle, or grey.
QLinearGradient knobGradient(const QRectF& knob, bool enabled) {
    QLinearGradient gradient(0, knob.top() + 2, 0, knob.bottom() - 2);
    gradient.setColorAt(0, enabled ? QColor(0xFF, 0x68, 0x72) : QColor(0x72, 0x77, 0x80));
    gradient.setColorAt(1, enabled ? QColor(0xF0, 0x3B, 0x46) : QColor(0x5C, 0x60, 0x68));
    return gradient;
}

/// How far the wheel was turned, in eighths of a degree; positive is up or to the right.
int wheelDelta(const QWheelEvent& event) {
    const QPoint angle = event.angleDelta().isNull() ? event.pixelDelta() * kAnglePerPixel : event.angleDelta();
    const int delta = std::abs(angle.y()) >= std::abs(angle.x()) ? angle.y() : -angle.x();
    return event.inverted() ? -delta : delta;
}

} // namespace

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

/// The style gets only the area of the knob's travel, so that it places the knob where it is drawn.
void DrawnSlider::initStyleOption(QStyleOptionSlider* option) const {
    QSlider::initStyleOption(option);
    option->rect = knobTravel(width());
}

QRect DrawnSlider::knob() const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    return knobRect(QStyle::sliderPositionFromValue(
        minimum(), maximum(), sliderPosition(), knobDistance(width()), option.upsideDown));
}

void DrawnSlider::drawKnob(QPainter& context) const {
    const QRectF box = knob();
    context.setBrush(palette().alternateBase());
    if (hasFocus()) {
        context.setPen(QPen(Qt::white, kFocusRingWidth));
        context.drawRoundedRect(grown(box, kFocusRingGap), kFocusRingRadius, kFocusRingRadius);
    } else {
        context.setPen(Qt::NoPen);
        context.drawRoundedRect(grown(box, kHaloWidth), kHaloRadius, kHaloRadius);
    }
    context.setPen(kKnobOutline);
    context.setBrush(knobGradient(box, isEnabled()));
    context.drawRoundedRect(grown(box, -kOutlineInset), kKnobRadius, kKnobRadius);
    context.setPen(kKnobGloss);
    context.setBrush(Qt::NoBrush);
    context.drawRoundedRect(grown(box, -kGlossInset), kKnobRadius, kKnobRadius);
}

/// Of `value()`, which the device reported last; a drag may be ahead of it.
QString DrawnSlider::valueText() const {
    return Localizable::tr("%1%", "Value of a slider in percent").arg(percentOf(value(), minimum(), maximum()));
}

void DrawnSlider::drawValue(QPainter& context) const {
    const QFont font = titleFont();
    const QString text = valueText();
    context.setFont(font);
    context.setPen(palette().color(QPalette::PlaceholderText));
    context.drawText(valueRect(knob(), width(), QFontMetricsF(font).horizontalAdvance(text)),
        Qt::AlignCenter | Qt::TextDontClip, text);
}

void DrawnSlider::paintEvent(QPaintEvent* /*event*/) {
    QPainter context(this);
    context.setRenderHint(QPainter::Antialiasing);
    drawBarInside(context, barRect(width()), false);
    drawTickMarks(context);
    drawKnob(context);
    if (isEnabled() && (underMouse() || hasFocus())) drawValue(context);
}

/// Adds up the small steps of a touchpad exactly in both directions, unlike QSlider.
void DrawnSlider::wheelEvent(QWheelEvent* event) {
    event->accept();
    const bool fast = event->modifiers().testAnyFlags(Qt::ControlModifier | Qt::ShiftModifier);
    const int perNotch = fast ? pageStep() : std::min(QApplication::wheelScrollLines() * singleStep(), pageStep());
    m_wheelRest += wheelDelta(*event) * (invertedControls() ? -perNotch : perNotch);
    const int steps = m_wheelRest / kNotch;
    m_wheelRest %= kNotch;
    if (steps != 0) setValue(value() + steps);
}
