#pragma once

#include "CustomPopUpButton.h"

#include <QAccessibleWidget>

/// The accessible interface of a pop-up: its name, and the chosen title as its text. The toolkit's own
/// interface gives the title as the name.
class PopUpAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit PopUpAccessible(CustomPopUpButton& popUp)
        : QAccessibleWidget(&popUp, QAccessible::ComboBox), m_popUp(popUp) {}

    [[nodiscard]] void* interface_cast(QAccessible::InterfaceType type) override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] QAccessible::State state() const override;
    // Its one child is the list, open or not.
    [[nodiscard]] int childCount() const override { return 1; }
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString& name) override;

    [[nodiscard]] QString text(int start, int end) const override { return title().mid(start, end - start); }
    [[nodiscard]] int characterCount() const override { return static_cast<int>(title().size()); }
    // The title can neither be selected nor edited.
    void selection(int /*index*/, int* start, int* end) const override { *start = *end = 0; }
    [[nodiscard]] int selectionCount() const override { return 0; }
    void addSelection(int /*start*/, int /*end*/) override {}
    void removeSelection(int /*index*/) override {}
    void setSelection(int /*index*/, int /*start*/, int /*end*/) override {}
    [[nodiscard]] int cursorPosition() const override { return 0; }
    void setCursorPosition(int /*position*/) override {}
    [[nodiscard]] QRect characterRect(int /*offset*/) const override { return rect(); }
    [[nodiscard]] int offsetAtPoint(const QPoint& /*point*/) const override { return -1; }
    void scrollToSubstring(int /*start*/, int /*end*/) override {}
    [[nodiscard]] QString attributes(int /*offset*/, int* start, int* end) const override;

private:
    [[nodiscard]] QString title() const { return m_popUp.currentText(); }

    CustomPopUpButton& m_popUp;
};
