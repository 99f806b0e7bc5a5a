#include "HeldKeys.h"

#include <QAbstractSlider>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>

namespace {

bool mayRepeat(const QObject& receiver, int key) {
    switch (key) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab: return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return qobject_cast<const QAbstractSlider*>(&receiver) || qobject_cast<const QLabel*>(&receiver)
            || qobject_cast<const QMenu*>(&receiver);
    default: return false;
    }
}

class RepeatFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* receiver, QEvent* event) override {
        const bool isKey = event->type() == QEvent::KeyPress && receiver->isWidgetType();
        const bool isOverride = event->type() == QEvent::ShortcutOverride; // accepted, it keeps shortcuts from running
        if (!isKey && !isOverride) return false;
        const auto& key = static_cast<QKeyEvent&>(*event);
        if (!key.isAutoRepeat() || (isKey && mayRepeat(*receiver, key.key()))) return false;
        event->accept();
        return true;
    }
};

} // namespace

void ignoreHeldKeys() {
    qApp->installEventFilter(new RepeatFilter(qApp));
}
