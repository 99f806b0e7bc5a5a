#include "Accessibility.h"

#include "ImageViews.h"
#include "PopUpAccessible.h"
#include "PopUpListAccessible.h"

namespace {

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
    if (auto* popUp = qobject_cast<CustomPopUpButton*>(object)) return new PopUpAccessible(*popUp);
    if (auto* list = qobject_cast<PopUpList*>(object)) return new PopUpListAccessible(*list);
    if (auto* background = qobject_cast<BackgroundImageView*>(object)) // shows nothing to tell, but holds all
        return new QAccessibleWidget(background, QAccessible::Pane);
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget) return nullptr;
    if (widget->metaObject() == &QFrame::staticMetaObject) // a card
        return new QAccessibleWidget(widget, QAccessible::Grouping);
    if (widget->metaObject() == &QWidget::staticMetaObject && widget->windowType() == Qt::Window)
        return new QAccessibleWidget(widget, QAccessible::Window);
    return nullptr;
}

} // namespace

void installAccessibility() {
    QAccessible::installFactory(makeInterface);
}
