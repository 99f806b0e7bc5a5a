#pragma once

#include <QRect>
#include <QRectF>
#include <QSize>

#include <vector>

// The drawn sliders' geometry in logical pixels, for painting, hit area and tests.

inline constexpr QSize kSmallestSlider(240, 48);

/// The distance between ticks.
enum class TickSpacing : unsigned char { Twentieth, Quarter };

/// The track inside a bar rectangle: as wide as the bar, 3 high.
[[nodiscard]] QRectF trackRect(const QRectF& bar);

/// Horizontal positions of the ticks over a bar of that width; they reach from `kTickTop` to `kTickBottom`. Empty for a
/// bar that has not been drawn yet or is too narrow for the first tick. Only the first tick if the next one would be
/// left of it or too close to distinguish.
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

/// The area in which the knob moves, in a slider of that width.
[[nodiscard]] QRect knobTravel(int sliderWidth);
/// The knob that many pixels right of the left end of its travel. All of it can be grabbed.
[[nodiscard]] QRect knobRect(int offset);
/// How far the knob moves from end to end.
[[nodiscard]] int knobDistance(int sliderWidth);

/// The position of a value in its range, in percent.
[[nodiscard]] int percentOf(int value, int minimum, int maximum);
/// The value's text: above the ticks, centred over the knob and within the slider.
[[nodiscard]] QRectF valueRect(const QRect& knob, int sliderWidth, double textWidth);
