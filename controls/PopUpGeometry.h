#pragma once

#include <QLineF>

#include <array>

// The drawn pop-up's geometry in logical pixels, for painting and tests. It does not follow the button's size.

inline constexpr int kPopUpWidth = 160;
inline constexpr int kPopUpHeight = 28;
inline constexpr double kArrowAreaWidth = 21.0;
inline constexpr double kDividerX = kPopUpWidth - kArrowAreaWidth;
inline constexpr double kArrowCenter = kPopUpWidth - kArrowAreaWidth * 0.5;
inline constexpr double kChevronShift = 1.75; // the tips are left of the centre on purpose
inline constexpr double kTitleLeft = 12.0;
inline constexpr double kTitleRight = 132.0;
inline constexpr double kLineWidth = 1.0;

inline constexpr QLineF kDivider{kDividerX, 0.0, kDividerX, kPopUpHeight};

/// The two chevrons, pointing away from each other.
inline constexpr std::array<QLineF, 4> kChevrons{{
    {kArrowCenter - 4 - kChevronShift, 10.0, kArrowCenter - kChevronShift, 6.0},
    {kArrowCenter + 4 - kChevronShift, 10.0, kArrowCenter - kChevronShift, 6.0},
    {kArrowCenter - 4 - kChevronShift, 15.0, kArrowCenter - kChevronShift, 19.0},
    {kArrowCenter + 4 - kChevronShift, 15.0, kArrowCenter - kChevronShift, 19.0},
}};
