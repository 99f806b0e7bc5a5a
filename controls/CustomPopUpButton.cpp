#include "CustomPopUpButton.h"

#include "Colors.h"
#include "FatalStop.h"
#include "ModalRun.h"
#include "PopUpGeometry.h"
#include "PopUpList.h"

#include <QAccessible>
#include <QSignalBlocker>
#include <QStyleOption>
#include <QStyledItemDelegate>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace {

constexpr int kAttributedTitle = Qt::UserRole;
constexpr double kLineWidth = 1.0;
constexpr double kFocusFrameWidth = 2.0;
constexpr double kFocusFrameRadius = 3.0;
constexpr QRectF kFocusFrame(3, 3, 133, 22);

// The light colour's components are given on the scale 0 to 255, which makes white at 80 % opacity; the
// clamped look is the intended one.
QColor lightColor() {
    return deviceColor(220.0, 220.0, 220.0, 0.8);
}

QColor lineColor() {
    return deviceColor(0.75, 0.15, 0.15, 1.0);
}

/// The device pixels that a rectangle covers by half or more: what is filled there is sharp at every scale.
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

/// Rows of the open list: the style, which isn't told of a text, draws all but the title.
class TitleDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        option.widget->style()->drawControl(QStyle::CE_ItemViewItem, &option, painter, option.widget);
        // The list covers the face but for the border's pixel: the titles of both are aligned.
        const QRectF box = QRectF(option.rect).adjusted(kTitleLeft - 1, 0, -kTitleLeft, 0);
        drawAttributedString(*painter, box, index.data(kAttributedTitle).value<AttributedString>());
    }
};

} // namespace

CustomPopUpButton::CustomPopUpButton(QWidget* parent) : QComboBox(parent) {
}

CustomPopUpButton::CustomPopUpButton(const QRect& /*frame*/) {
    fatalStop("CustomPopUpButton: unsupported initialiser init(frame:)");
}

CustomPopUpButton::CustomPopUpButton(const QRect& /*frame*/, bool /*pullsDown*/) {
    fatalStop("CustomPopUpButton: unsupported initialiser init(frame:pullsDown:)");
}

void CustomPopUpButton::didDecode() {
    // Not earlier: the list takes its place in the window's style sheet by this button's name.
    setView(new PopUpList(*this));
    view()->setItemDelegate(new TitleDelegate(view()));
    view()->installEventFilter(this);
    setItemStyles(CPOPUP_TEXT_BLACK_COLOR);
    // Before all handlers, so that they run after the list was closed in whatever order the toolkit does it.
    connect(this, &QComboBox::activated, this, &CustomPopUpButton::emitMenuDidClose);
    connect(this, &QComboBox::currentIndexChanged, this, &CustomPopUpButton::showCurrentRow);
    showCurrentRow();
}

/// Selects the current item in the list: the toolkit leaves the selection where the user has browsed to, and
/// screen readers read it there. The list alone would also report that the row has the focus.
void CustomPopUpButton::showCurrentRow() {
    const QSignalBlocker blocker(view()->selectionModel());
    view()->setCurrentIndex(model()->index(currentIndex(), modelColumn(), rootModelIndex()));
    QAccessibleEvent selected(view(), QAccessible::Selection);
    selected.setChild(currentIndex());
    QAccessible::updateAccessibility(&selected);
}

void CustomPopUpButton::removeAllItems() {
    clear();
}

void CustomPopUpButton::addItemsWithTitles(const QStringList& titles) {
    addItems(titles);
    setItemStyles(CPOPUP_TEXT_WHITE_COLOR);
}

void CustomPopUpButton::setItemStyles(int style) {
    const QColor color = style == CPOPUP_TEXT_BLACK_COLOR ? QColor(Qt::black) : lightColor();
    for (int index = 0; index < count(); ++index) {
        const QString title = itemText(index);
        const AttributedString attributed = createAttributedString(title, color, title, color);
        setItemData(index, QVariant::fromValue(attributed), kAttributedTitle);
    }
}

AttributedString CustomPopUpButton::attributedTitle(int index) const {
    return itemData(index, kAttributedTitle).value<AttributedString>();
}

void CustomPopUpButton::setArrowPosition(ArrowPosition position) {
    m_arrowPosition = position;
    update();
}

void CustomPopUpButton::showPopup() {
    if (count() == 0 || isBehindModalRun(*this)) return;
    m_open = true;
    emit menuWillOpen(view());
    QComboBox::showPopup();
}

void CustomPopUpButton::chooseItemAtIndex(int index) {
    if (index < 0 || index >= count() || !isEnabled() || isBehindModalRun(*this)) return;
    hidePopup();
    setCurrentIndex(index);
    emit activated(index);
}

void CustomPopUpButton::emitMenuDidClose() {
    if (std::exchange(m_open, false)) emit menuDidClose(view());
}

// The list is closed by the user, by the program, or by the window system after a click elsewhere.
bool CustomPopUpButton::eventFilter(QObject* list, QEvent* event) {
    if (event->type() == QEvent::Hide) {
        emitMenuDidClose();
        // Later: the toolkit may still have to take a choice from the row.
        QMetaObject::invokeMethod(this, &CustomPopUpButton::showCurrentRow, Qt::QueuedConnection);
    }
    return QComboBox::eventFilter(list, event);
}

// A turn of the wheel while scrolling past must not change what is being recorded.
void CustomPopUpButton::wheelEvent(QWheelEvent* event) {
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
    AttributedString title = attributedTitle(currentIndex());
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
