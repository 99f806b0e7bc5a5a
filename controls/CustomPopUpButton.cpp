#include "CustomPopUpButton.h"

#include "Colors.h"
#include "FatalStop.h"
#include "ModalRun.h"
#include "PopUpGeometry.h"

#include <QActionGroup>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleOption>

#include <algorithm>
#include <utility>

namespace {

constexpr double kLineWidth = 1.0;
constexpr double kFocusFrameWidth = 2.0;
constexpr double kFocusFrameRadius = 3.0;
constexpr QRectF kFocusFrame(3, 3, 133, 22);

const QColor kMenuGround(0xF3, 0xF1, 0xF0);
const QColor kActiveRow(0xF3, 0xC6, 0xC4);

// The light colour's components are given on the scale 0 to 255, which makes white at 80 % opacity; the
// clamped look is the intended one.
QColor lightColor() {
    return deviceColor(220.0, 220.0, 220.0, 0.8);
}

QColor lineColor() {
    return deviceColor(0.75, 0.15, 0.15, 1.0);
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
    context.fillRect(context.deviceTransform().inverted().mapRect(QRectF(pixels)), lineColor());
}

void drawBorder(QPainter& context) {
    const QRect face = devicePixels(context, QRectF(0, 0, kPopUpWidth, kPopUpHeight));
    const int width = lineWidth(context);
    for (const QRect& side : QRegion(face) - face.adjusted(width, width, -width, -width)) fillPixels(context, side);
}

/// Draws each item's title as it is attributed. The style sheet gives the rows their size.
class TitleMenu : public QMenu {
public:
    using QMenu::QMenu;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter context(this);
        context.fillRect(rect(), lineColor()); // the rows cover all but the border
        for (QAction* item : actions()) {
            const QRect row = actionGeometry(item);
            context.fillRect(row, item == activeAction() ? kActiveRow : kMenuGround);
            // Rows begin inside the border, the face under it: this aligns the titles of both.
            const QRectF box = QRectF(row).adjusted(kTitleLeft - kLineWidth, 0, -kTitleLeft, 0);
            drawAttributedString(context, box, item->data().value<AttributedString>());
        }
    }
    // Newer toolkits close the menu, without a choice, by a press where the pointer has been since it opened.
    void mousePressEvent(QMouseEvent* event) override {
        m_pressed = actionAt(event->position().toPoint()) != nullptr;
        if (!m_pressed) QMenu::mousePressEvent(event);
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        QAction* item = actionAt(event->position().toPoint());
        if (std::exchange(m_pressed, false) && item != nullptr)
            item->trigger();
        else
            QMenu::mouseReleaseEvent(event);
    }

private:
    bool m_pressed = false; ///< on an item
};

} // namespace

CustomPopUpButton::CustomPopUpButton(QWidget* parent)
    : QWidget(parent), m_menu(new TitleMenu(this)), m_items(new QActionGroup(m_menu)) {
    m_menu->setAttribute(Qt::WA_NoMouseReplay);                 // a click beside the open menu only closes it
    connect(m_menu, &QMenu::triggered, m_menu, &QWidget::hide); // before all handlers
}

CustomPopUpButton::CustomPopUpButton(const QRect& /*frame*/) {
    fatalStop("CustomPopUpButton: unsupported initialiser init(frame:)");
}

CustomPopUpButton::CustomPopUpButton(const QRect& /*frame*/, bool /*pullsDown*/) {
    fatalStop("CustomPopUpButton: unsupported initialiser init(frame:pullsDown:)");
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

void CustomPopUpButton::showMenu() {
    if (m_menu->isEmpty() || isBehindModalRun(*this)) return;
    m_menu->popup(mapToGlobal(QPoint(0, -1)), m_items->checkedAction());
    m_menu->setActiveAction(m_items->checkedAction());
}

void CustomPopUpButton::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) showMenu();
}

/// As in a combo box, keys choose an item without opening the menu: the next one, the first or last one, or the
/// next one with an initial.
void CustomPopUpButton::keyPressEvent(QKeyEvent* event) {
    const int last = static_cast<int>(m_menu->actions().size()) - 1;
    const int selected = indexOfSelectedItem();
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_F4: return showMenu();
    case Qt::Key_Up: return event->modifiers().testFlag(Qt::AltModifier) ? showMenu() : choose(selected - 1);
    case Qt::Key_Down: return event->modifiers().testFlag(Qt::AltModifier) ? showMenu() : choose(selected + 1);
    case Qt::Key_Home: return choose(0);
    case Qt::Key_End: return choose(last);
    default: break;
    }
    for (int step = 1; step <= last + 1 && !event->text().isEmpty(); ++step) {
        const int index = (selected + step) % (last + 1);
        if (m_menu->actions()[index]->text().startsWith(event->text(), Qt::CaseInsensitive)) return choose(index);
    }
    event->ignore();
}

void CustomPopUpButton::choose(int index) {
    QAction* item = m_menu->actions().value(index);
    if (!item) return;
    item->trigger();
    m_menu->setActiveAction(item); // a screen reader says it, as in the open menu
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
    context->setPen(QPen(lineColor(), kLineWidth, Qt::SolidLine, Qt::FlatCap));
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
    const auto stroke = [&context](const PopUpLine& line) { Line(&context, line.Ax, line.Ay, line.Bx, line.By); };
    stroke(kDivider);
    for (const PopUpLine& line : kChevrons) stroke(line);
    drawBorder(context);
}
