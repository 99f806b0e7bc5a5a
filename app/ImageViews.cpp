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
    QWindow* const handle = window()->windowHandle();
    if (event->button() == Qt::LeftButton && mouseDownCanMoveWindow() && handle && handle->startSystemMove())
        return;
    QLabel::mousePressEvent(event); // no window manager, nothing to drag with
}
