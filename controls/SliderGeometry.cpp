#include "SliderGeometry.h"

namespace {

constexpr double kBarInset = 3.0;
constexpr double kBarTop = 33.0;

} // namespace

QRectF trackRect(const QRectF& bar) {
    return {bar.x(), bar.y(), bar.width(), kTrackHeight};
}

QRectF barRect(int sliderWidth) {
    return {kBarInset, kBarTop, sliderWidth - 2 * kBarInset, kTrackHeight};
}

std::vector<double> tickPositions(double barWidth, double knobAllowance, TickSpacing spacing) {
    // The order of the arithmetic is kept so that the rounding stays what it is.
    const double run = barWidth + knobAllowance / (-1.35);
    const double step = spacing == TickSpacing::Twentieth ? run / 20.0 : run * 0.25;
    std::vector<double> positions;
    double x = knobAllowance / 1.9;
    while (x < barWidth) {
        positions.push_back(x);
        if (step <= 0)
            break; // a bar narrower than the knob: the run would never end
        x += step;
    }
    return positions;
}
