#include "CustomPopUpButton.h"

#include "Colors.h"
#include "ModalRun.h"
#include "PopUpGeometry.h"
#include "PopUpMenu.h"

#include <QActionGroup>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleOption>

#include <algorithm>

namespace {

constexpr double kFocusFrameWidth = 2.0;
constexpr double kFocusFrameRadius = 3.0;
constexpr QRectF kFocusFrame(3, 3, 133, 22);

// The light colour's components are given on the scale 0 to 255, which makes white at 80 % opacity; the clamped look is
// the intended one.
QColor lightColor() {
    return deviceColor(220.0, 220.0, 220.0, 0.8);
}

/// The device pixels that a rectangle covers by half or more. Filling them is sharp at every scale.
QRect devicePixels(const QPainter& context, const QRectF& box) {
    const QRectF covered = context.deviceTransform().mapRect(box);
    const QPoint corner(qRound(covered.left()), qRound(covered.top()));
    return {corner, QPoint(qRound(covered.right()) - 1, qRound(covered.bottom()) - 1)};
}

/// How many device pixels wide a line is at the painter's scale.
int lineWidth(const QPainter& context) {
    return std::max(1, qRound(kLineWidth * context.deviceTransform().m11()));
}

void fillPixels(QPainter& context, const QRect& pixels) {
    context.fillRect(context.deviceTransform().inverted().mapRect(QRectF(pixels)), kLineColor);
}

void drawBorder(QPainter& context) {
    const QRect face = devicePixels(context, QRectF(0, 0, kPopUpWidth, kPopUpHeight));
    const int width = lineWidth(context);
    for (const QRect& side : QRegion(face) - face.adjusted(width, width, -width, -width)) fillPixels(context, side);
}

} // namespace

CustomPopUpButton::CustomPopUpButton(QWidget* parent)
    : QWidget(parent), m_menu(new PopUpMenu(*this)), m_items(new QActionGroup(m_menu)) {
    setFixedSize(kPopUpWidth, kPopUpHeight);
    connect(m_menu, &QMenu::triggered, m_menu, [this](QAction* chosen) { // before all handlers
        if (m_menu->isVisible())
            m_menu->hide();
        else
            m_menu->setActiveAction(chosen); // a screen reader says it, as in the open menu
    });
}

QStringList CustomPopUpButton::itemTitles() const {
    QStringList titles;
    for (const QAction* item : m_menu->actions()) titles.append(item->text());
    return titles;
}

void CustomPopUpButton::setItemTitles(const QStringList& titles) {
    removeAllItems();
    addItemsWithTitles(titles);
}

void CustomPopUpButton::addItemsWithTitles(const QStringList& titles) {
    for (const QString& title : titles) {
        QAction* item = m_items->addAction(m_menu->addAction(title));
        item->setCheckable(true);
        connect(item, &QAction::toggled, this, qOverload<>(&QWidget::update));
    }
    setItemStyles(CPOPUP_TEXT_WHITE_COLOR);
}

int CustomPopUpButton::indexOfSelectedItem() const {
    return static_cast<int>(m_menu->actions().indexOf(m_items->checkedAction()));
}

void CustomPopUpButton::selectItemAtIndex(int index) {
    if (QAction* selected = m_items->checkedAction()) selected->setChecked(false);
    if (QAction* item = m_menu->actions().value(index)) item->setChecked(true);
}

void CustomPopUpButton::setItemStyles(int style) {
    const QColor color = style == CPOPUP_TEXT_BLACK_COLOR ? QColor(Qt::black) : lightColor();
    for (QAction* item : m_menu->actions())
        item->setData(QVariant::fromValue(createAttributedString(item->text(), color, item->text(), color)));
    update();
}

AttributedString CustomPopUpButton::attributedTitle(int index) const {
    const QAction* item = m_menu->actions().value(index);
    return item ? item->data().value<AttributedString>() : AttributedString();
}

void CustomPopUpButton::setArrowPosition(ArrowPosition position) {
    m_arrowPosition = position;
    update();
}

QMenu* CustomPopUpButton::menu() const {
    return m_menu;
}

void CustomPopUpButton::showMenu(std::optional<quint64> pressedAt) {
    if (!isEnabled() || m_menu->isEmpty() || isBehindModalRun(*this)) return;
    QAction* selected = m_items->checkedAction();
    m_menu->open(selected ? selected : m_menu->actions().front(), pressedAt);
}

void CustomPopUpButton::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) showMenu(event->timestamp());
}

void CustomPopUpButton::keyPressEvent(QKeyEvent* event) {
    const bool isF4 = event->key() == Qt::Key_F4 && event->modifiers() == Qt::NoModifier;
    const bool isAltDown = event->key() == Qt::Key_Down && event->modifiers() == Qt::AltModifier;
    if (event->key() == Qt::Key_Space || isF4 || isAltDown) return showMenu();
    const int selected = indexOfSelectedItem();
    const int row = isWithCommandKey(*event) ? selected : m_menu->rowFor(*event, selected, 1);
    if (row != selected)
        m_menu->actions()[row]->trigger();
    else
        event->ignore();
}

void CustomPopUpButton::Line(QPainter* context, double Ax, double Ay, double Bx, double By) {
    if (!context) return;
    if (Ax == Bx) {
        QRect upright = devicePixels(*context, QRectF(Ax - kLineWidth / 2, Ay, kLineWidth, By - Ay).normalized());
        upright.setWidth(lineWidth(*context));
        fillPixels(*context, upright);
        return;
    }
    context->setRenderHint(QPainter::Antialiasing);
    context->setPen(QPen(kLineColor, kLineWidth, Qt::SolidLine, Qt::FlatCap));
    context->drawLine(QPointF(Ax, Ay), QPointF(Bx, By));
}

void CustomPopUpButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter context(this);
    drawRect(context);
}

void CustomPopUpButton::drawRect(QPainter& context) const {
    context.fillRect(QRectF(0, 0, kPopUpWidth, kPopUpHeight), Qt::black);
    drawTitle(context);
    drawDecorations(context);
    if (!hasFocus()) return;
    context.setPen(QPen(Qt::white, kFocusFrameWidth));
    context.drawRoundedRect(kFocusFrame, kFocusFrameRadius, kFocusFrameRadius);
}

void CustomPopUpButton::drawTitle(QPainter& context) const {
    AttributedString title = attributedTitle(indexOfSelectedItem());
    if (!isEnabled()) title.addColor(0, title.string.size(), kDisabledTextColor);
    drawAttributedString(context, QRectF(kTitleLeft, 0, kTitleRight - kTitleLeft, kPopUpHeight), title);
}

void CustomPopUpButton::drawDecorations(QPainter& context) const {
    if (m_arrowPosition != ArrowPosition::None) {
        QStyleOption arrow;
        arrow.initFrom(this);
        arrow.rect = QRectF(kDividerX, 0, kArrowAreaWidth, kPopUpHeight).toRect();
        style()->drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrow, &context, this);
    }
    const auto stroke = [&context](const QLineF& line) { Line(&context, line.x1(), line.y1(), line.x2(), line.y2()); };
    stroke(kDivider);
    for (const QLineF& line : kChevrons) stroke(line);
    drawBorder(context);
}
