#include "HeldKeys.h"

#include <QAbstractSlider>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>

#include <utility>

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
        return qobject_cast<const QAbstractSlider*>(&receiver) != nullptr
            || qobject_cast<const QLabel*>(&receiver) != nullptr || qobject_cast<const QMenu*>(&receiver) != nullptr;
    default: return false;
    }
}

class RepeatFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* receiver, QEvent* event) override {
        const bool isRelease = event->type() == QEvent::KeyRelease;
        const bool isPress = event->type() == QEvent::KeyPress && receiver->isWidgetType();
        const bool isOverride = event->type() == QEvent::ShortcutOverride; // accepted, it keeps shortcuts from running
        if (!isRelease && !isPress && !isOverride) return false;
        const auto& key = static_cast<QKeyEvent&>(*event);
        if (isRelease) m_released = {key.key(), key.timestamp()};
        if (isRelease || !isRepeat(key) || (isPress && mayRepeat(*receiver, key.key()))) return false;
        event->accept();
        return true;
    }

private:
    /// On X11 a key repeats by a release and a press at the same time, in which Qt recognises no repeat if the press
    /// arrives late.
    [[nodiscard]] bool isRepeat(const QKeyEvent& key) const {
        return key.isAutoRepeat() || (key.timestamp() != 0 && m_released == std::pair{key.key(), key.timestamp()});
    }

    std::pair<int, quint64> m_released; ///< the last key that was released, and when
};

} // namespace

void ignoreHeldKeys() {
    qApp->installEventFilter(new RepeatFilter(qApp));
}
