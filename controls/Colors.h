#pragma once

#include <QColor>

#include <algorithm>

/// A colour from components on the scale 0 to 1. Others are clamped: components on the scale 0 to 255 become full
/// intensity.
inline QColor deviceColor(double red, double green, double blue, double alpha) {
    const auto clamped = [](double component) { return static_cast<float>(std::clamp(component, 0.0, 1.0)); };
    return QColor::fromRgbF(clamped(red), clamped(green), clamped(blue), clamped(alpha));
}

/// The colour of disabled text.
inline const QColor kDisabledTextColor(0x6F, 0x74, 0x7E);

/// The pop-up's border and decoration.
inline const QColor kLineColor = deviceColor(0.75, 0.15, 0.15, 1.0);
