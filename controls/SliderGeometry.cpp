#include "SliderGeometry.h"

#include <QStyle>

#include <algorithm>

namespace {

constexpr double kBarTop = 33.0;
constexpr int kSideInset = 3; // left and right of the bar and of the knob's travel: room for the focus ring
constexpr int kTravelTop = 26;
constexpr int kTravelHeight = 17;
constexpr double kValueTop = 2.0;
constexpr double kValueHeight = 16.0;
constexpr double kSmallestStep = 1e-4; // invisible, yet above the rounding of a position

} // namespace

QRectF trackRect(const QRectF& bar) {
    return {bar.x(), bar.y(), bar.width(), kTrackHeight};
}

QRectF barRect(int sliderWidth) {
    return {kSideInset, kBarTop, sliderWidth - 2.0 * kSideInset, kTrackHeight};
}

std::vector<double> tickPositions(double barWidth, double knobAllowance, TickSpacing spacing) {
    // The order of the arithmetic decides the rounding.
    const double run = barWidth + knobAllowance / (-1.35);
    const double step = spacing == TickSpacing::Twentieth ? run / 20.0 : run * 0.25;
    std::vector<double> positions;
    double x = knobAllowance / 1.9;
    while (x < barWidth) {
        positions.push_back(x);
        if (step < kSmallestStep) break; // the bar is as narrow as the knob: the loop would not end
        x += step;
    }
    return positions;
}

QRect knobTravel(int sliderWidth) {
    return {kSideInset, kTravelTop, sliderWidth - 2 * kSideInset, kTravelHeight};
}

QRect knobRect(int offset) {
    return {kSideInset + offset, kTravelTop + (kTravelHeight - kKnobSize) / 2, kKnobSize, kKnobSize};
}

int knobDistance(int sliderWidth) {
    return knobTravel(sliderWidth).width() - kKnobSize;
}

int percentOf(int value, int minimum, int maximum) {
    return QStyle::sliderPositionFromValue(minimum, maximum, value, 100);
}

QRectF valueRect(const QRect& knob, int sliderWidth, double textWidth) {
    const double centred = QRectF(knob).center().x() - textWidth / 2;
    const double left = std::clamp(centred, 0.0, std::max(0.0, sliderWidth - textWidth));
    return {left, kValueTop, textWidth, kValueHeight};
}
