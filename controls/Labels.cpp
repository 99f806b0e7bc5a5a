#include "ImageViews.h"

#include <QApplication>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QWindow>

namespace {

/// Draws the picture at its own size and its label's alignment, both mirrored in right-to-left layouts.
void drawPicture(QLabel& label) {
    QPixmap picture = label.pixmap();
    if (label.isRightToLeft()) picture = picture.transformed(QTransform::fromScale(-1, 1));
    const QRect place = QStyle::alignedRect(
        label.layoutDirection(), label.alignment(), picture.deviceIndependentSize().toSize(), label.rect());
    QPainter painter(&label);
    painter.setRenderHint(QPainter::SmoothPixmapTransform); // between 100 and 200 % the dense picture is drawn smaller
    painter.drawPixmap(place.topLeft(), picture);
}

} // namespace

QSize BackgroundImageView::sizeHint() const {
    return layout() ? layout()->sizeHint() : QLabel::sizeHint();
}

QSize BackgroundImageView::minimumSizeHint() const {
    return layout() ? layout()->minimumSize() : QLabel::minimumSizeHint();
}

void BackgroundImageView::paintEvent(QPaintEvent* /*event*/) {
    drawPicture(*this); // mirrored, so that the bright corner stays off the heading
}

void BackgroundImageView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !mouseDownCanMoveWindow()) return QLabel::mousePressEvent(event);
    m_pressed = event->globalPosition();
}

// A click with a small movement must not move the window.
void BackgroundImageView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_pressed || !event->buttons().testFlag(Qt::LeftButton)) return QLabel::mouseMoveEvent(event);
    if ((event->globalPosition() - *m_pressed).manhattanLength() < QApplication::startDragDistance()) return;
    m_pressed.reset();
    startMove();
}

void BackgroundImageView::mouseReleaseEvent(QMouseEvent* event) {
    m_pressed.reset();
    QLabel::mouseReleaseEvent(event);
}

void BackgroundImageView::startMove() {
    if (QWindow* handle = window()->windowHandle()) handle->startSystemMove(); // has no effect without a window manager
}

void MirroredImageView::paintEvent(QPaintEvent* /*event*/) {
    drawPicture(*this);
}
