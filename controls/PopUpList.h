#pragma once

#include "CustomPopUpButton.h"

#include <QListView>

/// The list that a pop-up opens. A class of its own so that its accessible interface finds the pop-up.
class PopUpList : public QListView {
    Q_OBJECT

public:
    explicit PopUpList(CustomPopUpButton& popUp) : m_popUp(popUp) {}

    [[nodiscard]] CustomPopUpButton& popUp() const { return m_popUp; }

private:
    CustomPopUpButton& m_popUp;
};
