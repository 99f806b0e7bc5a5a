#include "ImageViews.h"

#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QWindow>

QSize BackgroundImageView::sizeHint() const {
    return layout() ? layout()->sizeHint() : QLabel::sizeHint();
}

QSize BackgroundImageView::minimumSizeHint() const {
    return layout() ? layout()->minimumSize() : QLabel::minimumSizeHint();
}

void BackgroundImageView::paintEvent(QPaintEvent* /*event*/) {
    const QPixmap picture = pixmap();
    // The picture's bright corner stays where it was drawn, also in right-to-left languages.
    const QRect place =
        QStyle::alignedRect(Qt::LeftToRight, alignment(), picture.deviceIndependentSize().toSize(), rect());
    QPainter(this).drawPixmap(place.topLeft(), picture);
}

void BackgroundImageView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !mouseDownCanMoveWindow())
        return QLabel::mousePressEvent(event);
    if (QWindow* handle = window()->windowHandle())
        handle->startSystemMove(); // nothing happens without a window manager
}
