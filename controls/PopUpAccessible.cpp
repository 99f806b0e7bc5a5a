#include "PopUpAccessible.h"

#include "CustomPopUpButton.h"

#include <QAccessibleWidget>
#include <QAction>

namespace {

/// `childAt` skips a closed menu, which still has a rectangle.
class PopUpAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit PopUpAccessible(CustomPopUpButton& popUp)
        : QAccessibleWidget(&popUp, QAccessible::ComboBox), m_popUp(popUp) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? title() : QAccessibleWidget::text(kind);
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.expanded = m_popUp.menu()->isVisible();
        state.hasPopup = true;
        return state;
    }
    [[nodiscard]] int childCount() const override { return 1; }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(m_popUp.menu()) : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        return child && child->object() == m_popUp.menu() ? 0 : -1;
    }
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        return m_popUp.menu()->isVisible() ? QAccessibleWidget::childAt(x, y) : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override {
        return {showMenuAction(), pressAction(), setFocusAction()};
    }
    void doAction(const QString& name) override {
        if (name != showMenuAction() && name != pressAction())
            QAccessibleWidget::doAction(name);
        else if (m_popUp.menu()->isVisible())
            m_popUp.menu()->hide();
        else
            m_popUp.showMenu();
    }

    [[nodiscard]] QString text(int start, int end) const override { return title().mid(start, end - start); }
    [[nodiscard]] int characterCount() const override { return static_cast<int>(title().size()); }
    [[nodiscard]] QRect characterRect(int /*offset*/) const override { return rect(); }
    [[nodiscard]] QString attributes(int /*offset*/, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }
    // The title can neither be selected nor edited.
    void selection(int /*index*/, int* start, int* end) const override { *start = *end = 0; }
    [[nodiscard]] int selectionCount() const override { return 0; }
    void addSelection(int /*start*/, int /*end*/) override {}
    void removeSelection(int /*index*/) override {}
    void setSelection(int /*index*/, int /*start*/, int /*end*/) override {}
    [[nodiscard]] int cursorPosition() const override { return 0; }
    void setCursorPosition(int /*position*/) override {}
    [[nodiscard]] int offsetAtPoint(const QPoint& /*point*/) const override { return -1; }
    void scrollToSubstring(int /*start*/, int /*end*/) override {}

private:
    [[nodiscard]] QString title() const { return m_popUp.titleOfSelectedItem(); }

    CustomPopUpButton& m_popUp;
};

/// Returns whether the pop-up is enabled.
bool choose(QAction& item, const QMenu& menu) {
    if (!menu.parentWidget()->isEnabled()) return false;
    item.trigger();
    return true;
}

/// The toolkit's own interface of a menu has the application as its parent.
class MenuTreeAccessible : public QAccessibleWidget {
public:
    explicit MenuTreeAccessible(QMenu& menu) : QAccessibleWidget(&menu, QAccessible::PopupMenu), m_menu(menu) {}

    [[nodiscard]] QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(m_menu.parent());
    }
    [[nodiscard]] int childCount() const override { return static_cast<int>(m_menu.actions().size()); }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        QAction* item = m_menu.actions().value(index);
        return item ? QAccessible::queryAccessibleInterface(item) : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        return child ? static_cast<int>(m_menu.actions().indexOf(child->object())) : -1;
    }

protected:
    QMenu& m_menu;
};

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
/// Newer screen readers find the level by the selection.
class MenuAccessible : public MenuTreeAccessible, public QAccessibleSelectionInterface {
public:
    using MenuTreeAccessible::MenuTreeAccessible;

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::SelectionInterface ? static_cast<QAccessibleSelectionInterface*>(this)
                                                       : QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] int selectedItemCount() const override { return static_cast<int>(selectedItems().size()); }
    [[nodiscard]] QList<QAccessibleInterface*> selectedItems() const override {
        QList<QAccessibleInterface*> selected;
        for (QAction* item : m_menu.actions()) {
            if (item->isChecked()) selected.append(QAccessible::queryAccessibleInterface(item));
        }
        return selected;
    }
    bool select(QAccessibleInterface* item) override {
        const int index = indexOfChild(item);
        return index >= 0 && choose(*m_menu.actions()[index], m_menu);
    }
    // A selection can be neither removed nor extended.
    bool unselect(QAccessibleInterface* /*item*/) override { return false; }
    bool selectAll() override { return false; }
    bool clear() override { return false; }
};
#else
using MenuAccessible = MenuTreeAccessible; // there is no selection interface
#endif

class ItemAccessible : public QAccessibleObject, public QAccessibleActionInterface {
public:
    ItemAccessible(QAction& item, QMenu& menu) : QAccessibleObject(&item), m_item(item), m_menu(menu) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }
    [[nodiscard]] QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(&m_menu);
    }
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::MenuItem; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? m_item.text() : QString();
    }
    [[nodiscard]] QRect rect() const override {
        return m_menu.actionGeometry(&m_item).translated(m_menu.mapToGlobal(QPoint(0, 0)));
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        state.checkable = state.focusable = state.selectable = true;
        state.checked = state.selected = m_item.isChecked();
        state.focused = m_menu.activeAction() == &m_item;
        state.invisible = !m_menu.isVisible();
        return state;
    }

    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (name == pressAction()) (void)choose(m_item, m_menu);
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

private:
    QAction& m_item;
    QMenu& m_menu;
};

bool isOfPopUp(const QMenu* menu) {
    return menu != nullptr && qobject_cast<CustomPopUpButton*>(menu->parent()) != nullptr;
}

} // namespace

QAccessibleInterface* makePopUpAccessible(QObject* object) {
    if (auto* popUp = qobject_cast<CustomPopUpButton*>(object)) return new PopUpAccessible(*popUp);
    if (auto* menu = qobject_cast<QMenu*>(object); isOfPopUp(menu)) return new MenuAccessible(*menu);
    auto* item = qobject_cast<QAction*>(object);
    auto* menu = item ? qobject_cast<QMenu*>(item->parent()) : nullptr;
    return isOfPopUp(menu) ? new ItemAccessible(*item, *menu) : nullptr;
}
