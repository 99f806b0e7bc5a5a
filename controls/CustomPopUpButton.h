#pragma once

#include "AttributedString.h"
#include "DescribedClasses.h"

#include <QComboBox>
#include <QStringList>

/// Item styles of the pop-up.
inline constexpr int CPOPUP_TEXT_BLACK_COLOR = 1; ///< for the open list, whose ground is light
inline constexpr int CPOPUP_TEXT_WHITE_COLOR = 2; ///< for the closed button

/// A pop-up button in the dark style: a black face with a dark-red border, a divider and a double chevron.
/// Its items' titles are attributed strings. Each choice of the user emits `activated` once, also for the
/// current item. Browsing the open list and the mouse wheel choose nothing.
class CustomPopUpButton : public QComboBox, public MadeFromDescription {
    Q_OBJECT

public:
    /// Where the style's own arrow is drawn; the chevrons are drawn in any case.
    enum class ArrowPosition : unsigned char { None, AtCenter };

    /// As window descriptions make it.
    explicit CustomPopUpButton(QWidget* parent);
    // A pop-up of this kind is made from a window description only: these stop the program.
    [[noreturn]] explicit CustomPopUpButton(const QRect& frame);
    [[noreturn]] CustomPopUpButton(const QRect& frame, bool pullsDown);

    void didDecode() override;

    void removeAllItems();
    /// Adds items and gives all items the light style.
    void addItemsWithTitles(const QStringList& titles);
    /// -1: nothing is selected.
    [[nodiscard]] int indexOfSelectedItem() const { return currentIndex(); }
    /// Is no action of the user. An index without an item selects nothing.
    void selectItemAtIndex(int index) { setCurrentIndex(index); }
    /// Gives every item's title the colour of the style: black for 1, the light one for any other.
    void setItemStyles(int style);
    [[nodiscard]] AttributedString attributedTitle(int index) const;

    [[nodiscard]] ArrowPosition arrowPosition() const { return m_arrowPosition; }
    void setArrowPosition(ArrowPosition position);

    /// Strokes one line of the decoration; draws nothing without a context.
    static void Line(QPainter* context, double Ax, double Ay, double Bx, double By);

    /// Opens the list. Does nothing while there are no items or a modal run makes this window inert.
    void showPopup() override;
    /// A choice by assistive technology, with the list open or closed. Closes the list first. Does nothing if
    /// the item can't be chosen now.
    void chooseItemAtIndex(int index);

signals:
    void menuWillOpen(QObject* menu);
    /// Comes before `activated` when an item was chosen.
    void menuDidClose(QObject* menu);

protected:
    bool eventFilter(QObject* list, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void emitMenuDidClose();
    void showCurrentRow();
    void drawRect(QPainter& context) const;
    void drawTitle(QPainter& context) const;
    void drawDecorations(QPainter& context) const;

    ArrowPosition m_arrowPosition = ArrowPosition::AtCenter;
    bool m_open = false;
};
