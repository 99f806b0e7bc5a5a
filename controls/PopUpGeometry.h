#pragma once

#include <array>

// What the drawn pop-up looks like, in logical pixels of a face 160 wide and 28 high: paints and tests both
// read it here. It does not follow the button's size.

struct PopUpLine {
    double Ax, Ay, Bx, By;
};

inline constexpr double kPopUpWidth = 160.0;
inline constexpr double kPopUpHeight = 28.0;
inline constexpr double kArrowAreaWidth = 21.0;
inline constexpr double kDividerX = kPopUpWidth - kArrowAreaWidth;
inline constexpr double kArrowCenter = kPopUpWidth - kArrowAreaWidth * 0.5;
inline constexpr double kChevronShift = 1.75; // the tips stand left of the centre; that is meant
inline constexpr double kTitleLeft = 12.0;
inline constexpr double kTitleRight = 132.0;

inline constexpr PopUpLine kDivider{kDividerX, 0.0, kDividerX, kPopUpHeight};

/// The two chevrons, pointing away from each other.
inline constexpr std::array<PopUpLine, 4> kChevrons{{
    {kArrowCenter - 4 - kChevronShift, 10.0, kArrowCenter - kChevronShift, 6.0},
    {kArrowCenter + 4 - kChevronShift, 10.0, kArrowCenter - kChevronShift, 6.0},
    {kArrowCenter - 4 - kChevronShift, 15.0, kArrowCenter - kChevronShift, 19.0},
    {kArrowCenter + 4 - kChevronShift, 15.0, kArrowCenter - kChevronShift, 19.0},
}};
