#include "PopUpAccessible.h"

#include <QAbstractItemView>

void* PopUpAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

QString PopUpAccessible::text(QAccessible::Text kind) const {
    return kind == QAccessible::Value ? title() : QAccessibleWidget::text(kind);
}

QAccessible::State PopUpAccessible::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.expandable = true;
    state.expanded = m_popUp.view()->isVisible();
    state.hasPopup = true;
    return state;
}

QAccessibleInterface* PopUpAccessible::child(int index) const {
    return index == 0 ? QAccessible::queryAccessibleInterface(m_popUp.view()) : nullptr;
}

int PopUpAccessible::indexOfChild(const QAccessibleInterface* child) const {
    return child && child->object() == m_popUp.view() ? 0 : -1;
}

QStringList PopUpAccessible::actionNames() const {
    return {showMenuAction(), pressAction(), setFocusAction()};
}

void PopUpAccessible::doAction(const QString& name) {
    if (!m_popUp.isEnabled()) return;
    if (name != showMenuAction() && name != pressAction())
        QAccessibleWidget::doAction(name);
    else if (m_popUp.view()->isVisible())
        m_popUp.hidePopup();
    else
        m_popUp.showPopup();
}

QString PopUpAccessible::attributes(int /*offset*/, int* start, int* end) const {
    *start = 0;
    *end = characterCount();
    return {};
}
