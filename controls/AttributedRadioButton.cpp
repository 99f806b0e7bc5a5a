#include "AttributedRadioButton.h"

#include "Colors.h"

#include <QStyleOptionButton>
#include <QStylePainter>

void AttributedRadioButton::setAttributedTitle(const AttributedString& title) {
    m_title = title;
    setFont(title.font); // the button makes room for its text in its font
    setText(title.string);
    update();
}

/// A mnemonic selects before it moves the focus, so that a screen reader says that the button is selected. The toolkit
/// selects it a tenth of a second later.
bool AttributedRadioButton::event(QEvent* event) {
    if (event->type() != QEvent::Shortcut) return QRadioButton::event(event);
    click();
    setFocus(Qt::ShortcutFocusReason);
    return true;
}

void AttributedRadioButton::paintEvent(QPaintEvent* event) {
    if (m_title.string.isEmpty()) {
        QRadioButton::paintEvent(event);
        return;
    }
    QStyleOptionButton option;
    initStyleOption(&option);
    const bool underline = style()->styleHint(QStyle::SH_UnderlineShortcut, &option, this) != 0;
    AttributedString title = withoutMnemonicMark(m_title, underline);
    if (!isEnabled())
        title.addColor(0, title.string.size(), kDisabledTextColor);
    else if (underMouse())
        title.addColor(0, title.string.size(), Qt::white);
    const QRect box = style()->subElementRect(QStyle::SE_RadioButtonContents, &option, this);
    option.text.clear();                                // the style draws all but the title,
    option.state &= ~QStyle::State_KeyboardFocusChange; // and the style sheet's frame shows the focus
    QStylePainter painter(this);
    painter.drawControl(QStyle::CE_RadioButton, option);
    drawAttributedString(painter, box, title);
}
