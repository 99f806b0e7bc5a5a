#pragma once

#include "AttributedString.h"

#include <QRadioButton>

/// A radio button whose title is drawn from an attributed string.
class AttributedRadioButton : public QRadioButton {
    Q_OBJECT

public:
    explicit AttributedRadioButton(QWidget* parent = nullptr) : QRadioButton(parent) {}

    [[nodiscard]] const AttributedString& attributedTitle() const { return m_title; }
    /// Replaces the title. Its text becomes the button's, so that a mnemonic in it works.
    void setAttributedTitle(const AttributedString& title);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    AttributedString m_title;
};
