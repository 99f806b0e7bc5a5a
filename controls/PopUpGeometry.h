#pragma once

#include <array>

// The drawn pop-up's geometry in logical pixels, for painting and tests. It does not follow the button's
// size.

struct PopUpLine {
    double Ax, Ay, Bx, By;
};

inline constexpr double kPopUpWidth = 160.0;
inline constexpr double kPopUpHeight = 28.0;
inline constexpr double kArrowAreaWidth = 21.0;
inline constexpr double kDividerX = kPopUpWidth - kArrowAreaWidth;
inline constexpr double kArrowCenter = kPopUpWidth - kArrowAreaWidth * 0.5;
inline constexpr double kChevronShift = 1.75; // the tips are left of the centre on purpose
inline constexpr double kTitleLeft = 12.0;
inline constexpr double kTitleRight = 132.0;
inline constexpr double kLineWidth = 1.0;

inline constexpr PopUpLine kDivider{kDividerX, 0.0, kDividerX, kPopUpHeight};

/// The two chevrons, pointing away from each other.
inline constexpr std::array<PopUpLine, 4> kChevrons{{
    {kArrowCenter - 4 - kChevronShift, 10.0, kArrowCenter - kChevronShift, 6.0},
    {kArrowCenter + 4 - kChevronShift, 10.0, kArrowCenter - kChevronShift, 6.0},
    {kArrowCenter - 4 - kChevronShift, 15.0, kArrowCenter - kChevronShift, 19.0},
    {kArrowCenter + 4 - kChevronShift, 15.0, kArrowCenter - kChevronShift, 19.0},
}};
