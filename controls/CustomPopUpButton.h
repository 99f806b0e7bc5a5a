#pragma once

#include "AttributedString.h"
#include "DescribedClasses.h"
#include "FatalStop.h"

#include <QMenu>
#include <QStringList>
#include <QWidget>

#include <optional>

class PopUpMenu;
class QActionGroup;

/// Item styles of the pop-up.
inline constexpr int CPOPUP_TEXT_BLACK_COLOR = 1; ///< for the open menu, which is light
inline constexpr int CPOPUP_TEXT_WHITE_COLOR = 2; ///< for the closed button

/// A pop-up button in the dark style: a black face with a dark-red border, a divider and a double chevron. Its items
/// are actions of its menu, one of which is checked; their titles are attributed strings. The menu emits `triggered`
/// once for each choice of the user, also for the current item. Browsing the open menu and the mouse wheel choose
/// nothing.
class CustomPopUpButton : public QWidget, public MadeFromDescription {
    Q_OBJECT
    Q_PROPERTY(int currentIndex READ indexOfSelectedItem WRITE selectItemAtIndex USER true)
    Q_PROPERTY(QStringList itemTitles READ itemTitles WRITE setItemTitles)

public:
    /// Where the style's own arrow is drawn; the chevrons are drawn in any case.
    enum class ArrowPosition : unsigned char { None, AtCenter };

    /// As window descriptions make it.
    explicit CustomPopUpButton(QWidget* parent);
    // A pop-up of this kind is made from a window description only: these stop the program.
    [[noreturn]] explicit CustomPopUpButton(const QRect& /*frame*/) {
        fatalStop("CustomPopUpButton: unsupported initialiser init(frame:)");
    }
    [[noreturn]] CustomPopUpButton(const QRect& /*frame*/, bool /*pullsDown*/) {
        fatalStop("CustomPopUpButton: unsupported initialiser init(frame:pullsDown:)");
    }

    /// The items of a description.
    [[nodiscard]] QStringList itemTitles() const;
    void setItemTitles(const QStringList& titles);
    void didDecode() override { setItemStyles(CPOPUP_TEXT_BLACK_COLOR); }

    [[nodiscard]] QMenu* menu() const;
    void removeAllItems() { menu()->clear(); }
    /// Adds items and gives all items the light style.
    void addItemsWithTitles(const QStringList& titles);
    /// -1: nothing is selected.
    [[nodiscard]] int indexOfSelectedItem() const;
    /// Is no action of the user. An index without an item selects nothing.
    void selectItemAtIndex(int index);
    /// Empty if no item is selected.
    [[nodiscard]] QString titleOfSelectedItem() const { return attributedTitle(indexOfSelectedItem()).string; }
    /// Gives every item's title the colour of the style: black for 1, the light one for any other.
    void setItemStyles(int style);
    [[nodiscard]] AttributedString attributedTitle(int index) const;

    [[nodiscard]] ArrowPosition arrowPosition() const { return m_arrowPosition; }
    void setArrowPosition(ArrowPosition position);

    /// Strokes one line of the decoration; draws nothing without a context.
    static void Line(QPainter* context, double Ax, double Ay, double Bx, double By);

    /// Opens the menu, by a press of the mouse at that time of the window system, in milliseconds, or otherwise. Does
    /// nothing while the pop-up is disabled, has no items or is in a window made inert by a modal run.
    void showMenu(std::optional<quint64> pressedAt = {});

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void drawRect(QPainter& context) const;
    void drawTitle(QPainter& context) const;
    void drawDecorations(QPainter& context) const;

    PopUpMenu* m_menu = nullptr;
    QActionGroup* m_items = nullptr; ///< of the menu, of which one is checked
    ArrowPosition m_arrowPosition = ArrowPosition::AtCenter;
};
