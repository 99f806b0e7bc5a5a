#pragma once

#include <QRect>
#include <QRectF>

#include <vector>

// What the drawn sliders look like, in logical pixels of the slider: painting, hit area and tests all read it
// here.

/// How close the ticks stand.
enum class TickSpacing : unsigned char { Twentieth, Quarter };

/// The track inside a bar rectangle: as wide as it, but always 3 high.
[[nodiscard]] QRectF trackRect(const QRectF& bar);

/// Where the ticks stand over a bar of that width; they reach from `kTickTop` to `kTickBottom`. None on a
/// bar that has not been drawn yet or is too narrow for the first, and only the first where the next would
/// not stand to the right of it, or closer than anyone can see.
[[nodiscard]] std::vector<double> tickPositions(double barWidth, double knobAllowance, TickSpacing spacing);

inline constexpr double kKnobAllowance = 20.0;
inline constexpr double kTrackHeight = 3.0;
inline constexpr double kTrackRadius = 2.0;
inline constexpr double kTickTop = 20.0;
inline constexpr double kTickBottom = 24.0;
inline constexpr double kTickWidth = 0.3;

/// The bar below the ticks, in a slider of that width.
[[nodiscard]] QRectF barRect(int sliderWidth);

inline constexpr int kKnobSize = 15;

/// Where the knob moves, in a slider of that width.
[[nodiscard]] QRect knobTravel(int sliderWidth);
/// The knob that many pixels right of the left end of its travel. All of it can be grabbed.
[[nodiscard]] QRect knobRect(int offset);
/// How far the knob moves from end to end.
[[nodiscard]] int knobWay(int sliderWidth);

/// Where the value's text stands: above the ticks, centred over the knob and within the slider.
[[nodiscard]] QRectF valueRect(const QRect& knob, int sliderWidth, double textWidth);
