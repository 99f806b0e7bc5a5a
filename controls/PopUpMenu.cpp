#include "PopUpMenu.h"

#include "AttributedString.h"
#include "Colors.h"
#include "PopUpGeometry.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <utility>

namespace {

const QColor kMenuGround(0xF3, 0xF1, 0xF0);
const QColor kActiveRow(0xF3, 0xC6, 0xC4);

} // namespace

bool isWithCommandKey(const QKeyEvent& event) {
    const bool isAltUp = event.key() == Qt::Key_Up && event.modifiers() == Qt::AltModifier;
    return !isAltUp && event.modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
}

PopUpMenu::PopUpMenu(QWidget& face) : QMenu(&face), m_face(face) {
    setAttribute(Qt::WA_NoMouseReplay); // a click beside the open menu only closes it
    // Only the sizes: the colours are drawn here.
    setStyleSheet(QStringLiteral("QMenu { border: 1px solid; padding: 0; margin: 0; }"
                                 "QMenu::item { width: %1px; height: %2px; padding: 0; margin: 0; }")
                      .arg(kPopUpWidth - 2)
                      .arg(kPopUpHeight));
}

void PopUpMenu::open(QAction* active, std::optional<quint64> pressedAt) {
    m_openedByPress = pressedAt;
    m_pressed = false;
    popup(m_face.mapToGlobal(QPoint(0, -1)), active);
    setFocus(Qt::PopupFocusReason); // so that the face gets it back, which a screen reader says
    setActiveAction(active);
}

int PopUpMenu::rowFor(const QKeyEvent& event, int from, int page) {
    const int last = static_cast<int>(actions().size()) - 1;
    switch (event.key()) {
    case Qt::Key_Up: return from > 0 ? from - 1 : from;
    case Qt::Key_Down: return std::min(from + 1, last);
    case Qt::Key_PageUp: return from > 0 ? std::max(from - page, 0) : from;
    case Qt::Key_PageDown: return std::min(from + page, last);
    case Qt::Key_Home: return std::min(0, last); // none without items
    case Qt::Key_End: return last;
    default: break;
    }
    const QString text = event.text();
    const bool isLetter = !text.isEmpty() && text[0].isPrint() && !isWithCommandKey(event);
    return isLetter ? rowStartingWith(text, from) : from;
}

/// As in the toolkit's item views: a letter typed again leads to the next row with it.
int PopUpMenu::rowStartingWith(const QString& text, int from) {
    const bool isContinued = m_typing.isValid() && m_typing.elapsed() <= QApplication::keyboardInputInterval();
    m_typing.start();
    m_typed = isContinued ? m_typed + text : text;
    const bool isOneLetter = m_typed.count(m_typed[0]) == m_typed.size();
    const QString start = isOneLetter ? m_typed.left(1) : m_typed;
    const QList<QAction*> rows = actions();
    int row = isOneLetter ? from + 1 : std::max(from, 0);
    for (qsizetype tried = 0; tried < rows.size(); ++tried, ++row) {
        row %= static_cast<int>(rows.size());
        if (rows[row]->text().startsWith(start, Qt::CaseInsensitive)) return row;
    }
    return from;
}

void PopUpMenu::keyPressEvent(QKeyEvent* event) {
    const bool isAltDown = event->key() == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier);
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    // Shortcuts do not work while a menu is open: the first Ctrl+Q closes it.
    const bool isQuit = event->keyCombination() == (Qt::CTRL | Qt::Key_Q);
    if (event->key() == Qt::Key_F4 || isAltDown || isQuit || event->matches(QKeySequence::Cancel)) {
        hide();
    } else if (isReturn) {
        if (activeAction() && !isWithCommandKey(*event)) activeAction()->trigger();
    } else {
        const QList<QAction*> items = actions();
        const int count = static_cast<int>(items.size());
        setActiveAction(items.value(rowFor(*event, static_cast<int>(items.indexOf(activeAction())), count)));
    }
}

// The toolkit's versions differ in what presses and releases do, so that none of these calls it.
void PopUpMenu::mousePressEvent(QMouseEvent* event) {
    mouseMoveEvent(event);
    m_pressed = actionAt(event->position().toPoint()) != nullptr;
    if (!rect().contains(event->position().toPoint())) hide();
}

void PopUpMenu::mouseMoveEvent(QMouseEvent* event) {
    if (QAction* item = actionAt(event->position().toPoint())) setActiveAction(item);
}

/// The press that opened the menu chooses where it is released beside the face.
void PopUpMenu::mouseReleaseEvent(QMouseEvent* event) {
    const bool isOfOpeningPress = !std::exchange(m_pressed, false);
    const auto interval = static_cast<quint64>(QApplication::doubleClickInterval());
    if (m_openedByPress && event->timestamp() - *m_openedByPress < interval) return;
    const bool isOnFace = m_face.rect().contains(m_face.mapFromGlobal(event->globalPosition()).toPoint());
    if (isOfOpeningPress && isOnFace) return;
    if (QAction* item = actionAt(event->position().toPoint()))
        item->trigger();
    else if (isOfOpeningPress)
        hide();
}

void PopUpMenu::paintEvent(QPaintEvent* /*event*/) {
    QPainter context(this);
    context.fillRect(rect(), kLineColor); // the rows cover all but the border
    for (QAction* item : actions()) {
        const QRect row = actionGeometry(item);
        context.fillRect(row, item == activeAction() ? kActiveRow : kMenuGround);
        // Rows begin inside the border, the face under it: this aligns the titles of both.
        const QRectF box = QRectF(row).adjusted(kTitleLeft - kLineWidth, 0, -kTitleLeft, 0);
        drawAttributedString(context, box, item->data().value<AttributedString>());
    }
}
