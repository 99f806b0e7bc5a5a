#include "Labels.h"

#include <QApplication>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QWindow>

void MirroredImageView::paintEvent(QPaintEvent* /*event*/) {
    QPixmap picture = pixmap();
    if (isRightToLeft()) picture = picture.transformed(QTransform::fromScale(-1, 1));
    const QRect place =
        QStyle::alignedRect(layoutDirection(), alignment(), picture.deviceIndependentSize().toSize(), rect());
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform); // between 100 and 200 % the dense picture is drawn smaller
    painter.drawPixmap(place.topLeft(), picture);
}

QSize BackgroundImageView::sizeHint() const {
    return layout() ? layout()->sizeHint() : MirroredImageView::sizeHint();
}

QSize BackgroundImageView::minimumSizeHint() const {
    return layout() ? layout()->minimumSize() : MirroredImageView::minimumSizeHint();
}

void BackgroundImageView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !mouseDownCanMoveWindow())
        return MirroredImageView::mousePressEvent(event);
    m_pressed = event->globalPosition();
}

// A click with a small movement must not move the window.
void BackgroundImageView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_pressed || !event->buttons().testFlag(Qt::LeftButton)) return MirroredImageView::mouseMoveEvent(event);
    if ((event->globalPosition() - *m_pressed).manhattanLength() < QApplication::startDragDistance()) return;
    m_pressed.reset();
    startMove();
}

void BackgroundImageView::mouseReleaseEvent(QMouseEvent* event) {
    m_pressed.reset();
    MirroredImageView::mouseReleaseEvent(event);
}

void BackgroundImageView::startMove() {
    if (QWindow* handle = window()->windowHandle()) handle->startSystemMove(); // has no effect without a window manager
}
