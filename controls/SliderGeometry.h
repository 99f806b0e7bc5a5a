#pragma once

#include <QRectF>

#include <array>
#include <vector>

// What the drawn sliders look like, in logical pixels of the slider: paints and tests both read it here.

/// How close the ticks stand.
enum class TickSpacing : unsigned char { Twentieth, Quarter };

/// The track inside a bar rectangle: as wide as it, but always 3 high.
[[nodiscard]] QRectF trackRect(const QRectF& bar);

/// Where the ticks stand over a bar of that width; they reach from `kTickTop` to `kTickBottom`. None on a
/// bar that has not been drawn yet or is too narrow for the first, and only the first where the next would
/// not stand to the right of it.
[[nodiscard]] std::vector<double> tickPositions(double barWidth, double knobAllowance, TickSpacing spacing);

inline constexpr double kKnobAllowance = 20.0;
inline constexpr double kTrackHeight = 3.0;
inline constexpr double kTrackRadius = 2.0;
inline constexpr double kTickTop = 20.0;
inline constexpr double kTickBottom = 24.0;
inline constexpr double kTickWidth = 0.3;

/// The bar below the ticks, in a slider of that width.
[[nodiscard]] QRectF barRect(int sliderWidth);
