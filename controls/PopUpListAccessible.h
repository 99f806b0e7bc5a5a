#pragma once

#include "PopUpList.h"

#include <QAccessibleWidget>

#include <vector>

/// The accessible interface of a pop-up's list, open or not: its items, one of them selected, can be chosen.
/// The toolkit's own interface only moves the list's selection.
class PopUpListAccessible : public QAccessibleWidget
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0) // has no such interface before
    ,
                            public QAccessibleSelectionInterface
#endif
{
public:
    explicit PopUpListAccessible(PopUpList& list) : QAccessibleWidget(&list, QAccessible::List), m_list(list) {
    }
    ~PopUpListAccessible() override;

    [[nodiscard]] int childCount() const override {
        return m_list.popUp().count();
    }
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* focusChild() const override {
        return child(m_list.currentIndex().row());
    }

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    [[nodiscard]] void* interface_cast(QAccessible::InterfaceType type) override;
    [[nodiscard]] int selectedItemCount() const override {
        return static_cast<int>(selectedItems().size());
    }
    [[nodiscard]] QList<QAccessibleInterface*> selectedItems() const override;
    bool select(QAccessibleInterface* item) override;
    // One item is always selected, and only one.
    bool unselect(QAccessibleInterface* /*item*/) override {
        return false;
    }
    bool selectAll() override {
        return false;
    }
    bool clear() override {
        return false;
    }
#endif

private:
    PopUpList& m_list;
    mutable std::vector<QAccessible::Id> m_items; ///< of the items that have been asked for
};
