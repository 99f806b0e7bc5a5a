#include "PopUpListAccessible.h"

namespace {

/// One item of the list.
class PopUpItemAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    PopUpItemAccessible(PopUpList& list, int index) : m_list(list), m_index(index) {}

    [[nodiscard]] int index() const { return m_index; }

    [[nodiscard]] bool isValid() const override { return m_index < m_list.popUp().count(); }
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(&m_list);
    }
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? m_list.popUp().itemText(m_index) : QString();
    }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override { return {toggleAction(), pressAction()}; }
    void doAction(const QString& /*name*/) override { m_list.popUp().chooseItemAtIndex(m_index); }
    [[nodiscard]] QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

private:
    PopUpList& m_list;
    int m_index;
};

QRect PopUpItemAccessible::rect() const {
    const QRect row = m_list.visualRect(m_list.model()->index(m_index, 0));
    return row.translated(m_list.viewport()->mapToGlobal(QPoint(0, 0)));
}

QAccessible::State PopUpItemAccessible::state() const {
    QAccessible::State state;
    state.selectable = true;
    state.focusable = true;
    state.selected = m_list.currentIndex().row() == m_index;
    state.focused = state.selected && m_list.hasFocus();
    state.invisible = !m_list.isVisible();
    state.disabled = !m_list.popUp().isEnabled();
    return state;
}

} // namespace

PopUpListAccessible::~PopUpListAccessible() {
    for (const QAccessible::Id item : m_items) QAccessible::deleteAccessibleInterface(item);
}

QAccessibleInterface* PopUpListAccessible::child(int index) const {
    if (index < 0 || index >= childCount()) return nullptr;
    for (int next = static_cast<int>(m_items.size()); next <= index; ++next) // registering hands them over
        m_items.push_back(QAccessible::registerAccessibleInterface(new PopUpItemAccessible(m_list, next)));
    return QAccessible::accessibleInterface(m_items[static_cast<std::size_t>(index)]);
}

int PopUpListAccessible::indexOfChild(const QAccessibleInterface* child) const {
    const auto* item = dynamic_cast<const PopUpItemAccessible*>(child);
    return item && item->parent() == this ? item->index() : -1;
}

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
void* PopUpListAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::SelectionInterface) return static_cast<QAccessibleSelectionInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

QList<QAccessibleInterface*> PopUpListAccessible::selectedItems() const {
    QAccessibleInterface* item = child(m_list.currentIndex().row());
    return item ? QList{item} : QList<QAccessibleInterface*>();
}

bool PopUpListAccessible::select(QAccessibleInterface* item) {
    const int index = indexOfChild(item);
    m_list.popUp().chooseItemAtIndex(index);
    return index >= 0;
}
#endif
