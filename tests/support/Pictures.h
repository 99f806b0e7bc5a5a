#pragma once

#include <QHash>
#include <QImage>
#include <QWidget>

/// A control, or a part of it, as its window shows it, scaled by `scale`.
inline QImage rendered(const QWidget& control, double scale = 1, QRect part = {}) {
    if (part.isNull()) part = control.rect();
    QWidget& window = *control.window();
    QImage image((QSizeF(part.size()) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    window.render(&image, {}, part.translated(control.mapTo(&window, QPoint())));
    return image;
}

/// The number of pixels of each colour.
inline QHash<QRgb, int> counted(const QImage& image) {
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) ++counts[image.pixel(x, y)];
    return counts;
}

/// The part of a picture that is brighter than its dark background.
inline QRect inked(const QImage& image) {
    QRegion bright;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) > 60) bright += QRect(x, y, 1, 1);
    return bright.boundingRect();
}
