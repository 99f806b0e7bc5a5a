#pragma once

#include <QLabel>
#include <QPushButton>

/// A text that can be selected and copied, also with the keyboard.
class SelectableLabel : public QLabel {
    Q_OBJECT

public:
    explicit SelectableLabel(QWidget* parent) : QLabel(parent) {
        setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
        setFocusPolicy(Qt::StrongFocus); // after the flags, which change it
    }
};

/// A disabled button used as a label. It lets the mouse through, so that the window can be dragged by it.
class LegendButton : public QPushButton {
    Q_OBJECT

public:
    explicit LegendButton(QWidget* parent) : QPushButton(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setEnabled(false);
        setFocusPolicy(Qt::NoFocus);
    }
};
