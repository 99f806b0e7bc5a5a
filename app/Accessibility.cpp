#include "Accessibility.h"

#include "Labels.h"
#include "PopUpAccessible.h"

#include <QAccessibleWidget>
#include <QApplication>

namespace {

/// A window, over which a menu may be open.
class WindowAccessible : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;

    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        QWidget* menu = QApplication::activePopupWidget();
        if (menu && menu->geometry().contains(x, y)) return QAccessible::queryAccessibleInterface(menu);
        return QAccessibleWidget::childAt(x, y);
    }
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
    if (QAccessibleInterface* ofPopUp = makePopUpAccessible(object)) return ofPopUp;
    if (auto* background = qobject_cast<BackgroundImageView*>(object)) // a container without content of its own
        return new QAccessibleWidget(background, QAccessible::Pane);
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget) return nullptr;
    if (widget->metaObject() == &QFrame::staticMetaObject) // a card
        return new QAccessibleWidget(widget, QAccessible::Grouping);
    if (widget->metaObject() == &QWidget::staticMetaObject && widget->windowType() == Qt::Window)
        return new WindowAccessible(widget, QAccessible::Window);
    return nullptr;
}

} // namespace

void installAccessibility() {
    QAccessible::installFactory(makeInterface);
}
