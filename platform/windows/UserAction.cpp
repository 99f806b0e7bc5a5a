#include "windows/UserAction.h"

#include "host/FatalStop.h"

#include <QAbstractSlider>
#include <QAction>
#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>

#include <memory>

namespace {

/// A press of the selected button is an action too, which `toggled` does not tell; assistive technology
/// toggles without a press, which `clicked` does not tell. A press tells both: the first is skipped then.
void connectRadioButton(QRadioButton& button, const std::function<void()>& act) {
    const auto pressing = std::make_shared<bool>(false);
    QObject::connect(&button, &QRadioButton::pressed, &button, [pressing] { *pressing = true; });
    QObject::connect(&button, &QRadioButton::released, &button, [pressing] { *pressing = false; });
    QObject::connect(&button, &QRadioButton::clicked, &button, act);
    QObject::connect(&button, &QRadioButton::toggled, &button, [pressing, act](bool selected) {
        if (selected && !*pressing)
            act();
    });
}

} // namespace

void connectUserAction(QObject& control, std::function<void()> act) {
    if (auto* action = qobject_cast<QAction*>(&control))
        QObject::connect(action, &QAction::triggered, action, std::move(act));
    else if (auto* slider = qobject_cast<QAbstractSlider*>(&control))
        QObject::connect(slider, &QAbstractSlider::valueChanged, slider, std::move(act));
    else if (auto* popUp = qobject_cast<QComboBox*>(&control))
        QObject::connect(popUp, &QComboBox::activated, popUp, std::move(act));
    else if (auto* radio = qobject_cast<QRadioButton*>(&control))
        connectRadioButton(*radio, act);
    else if (auto* button = qobject_cast<QAbstractButton*>(&control))
        QObject::connect(button, &QAbstractButton::clicked, button, std::move(act));
    else
        fatalStop("window description: %s is of a kind without an action",
                  qUtf8Printable(control.objectName()));
}
