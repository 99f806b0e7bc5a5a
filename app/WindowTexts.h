#pragma once

#include <QLabel>
#include <QPushButton>

/// A text that can be selected and copied, also with the keyboard.
class SelectableLabel : public QLabel {
    Q_OBJECT

public:
    explicit SelectableLabel(QWidget* parent) : QLabel(parent) {
        setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
        setFocusPolicy(Qt::StrongFocus); // after the flags, which set another
    }
};

/// A button that is only read. The mouse goes through it: the window can be dragged there.
class LegendButton : public QPushButton {
    Q_OBJECT

public:
    explicit LegendButton(QWidget* parent) : QPushButton(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setEnabled(false);
        setFlat(true);
        setFocusPolicy(Qt::NoFocus);
    }
};
