#include "HeldKeys.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr qint64 kLate = 50; // milliseconds, more than an idle program lets a key wait

bool mayRepeat(const QObject& receiver, int key) {
    constexpr std::array kMoving{
        Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown};
    const bool isMoved = receiver.inherits("QAbstractSlider") || receiver.inherits("QLabel");
    return key == Qt::Key_Tab || key == Qt::Key_Backtab
        || (isMoved && std::ranges::find(kMoving, key) != kMoving.end());
}

class RepeatFilter : public QObject {
public:
    explicit RepeatFilter(QObject* parent) : QObject(parent) { m_clock.start(); }

    bool eventFilter(QObject* receiver, QEvent* event) override {
        const bool isRelease = event->type() == QEvent::KeyRelease;
        const bool isPress = event->type() == QEvent::KeyPress && receiver->isWidgetType();
        const bool isOverride = event->type() == QEvent::ShortcutOverride; // accepted, it keeps shortcuts from running
        if (!isRelease && !isPress && !isOverride) return false;
        const auto& key = static_cast<QKeyEvent&>(*event);
        if (isRelease) m_released = {key.key(), key.timestamp()};
        if (isRelease || (isPress && !isLate(key) && mayRepeat(*receiver, key.key())) || !isRepeat(key)) return false;
        event->accept();
        return true;
    }

private:
    /// On X11 a repeat is a release and a press with the same time. Qt takes them for a new press if the second one
    /// arrives late.
    [[nodiscard]] bool isRepeat(const QKeyEvent& key) const {
        return key.isAutoRepeat() || (key.timestamp() != 0 && m_released == std::pair{key.key(), key.timestamp()});
    }

    /// Whether a repeat has waited for requests to the device. X11 queues them, which would move a slider on after the
    /// key's release. On Wayland they do not wait and have the time of the press.
    bool isLate(const QKeyEvent& press) {
        const qint64 delay = m_clock.elapsed() - static_cast<qint64>(press.timestamp()); // plus a constant
        if (!isRepeat(press)) {
            m_pressedAt = press.timestamp();
            m_leastDelay = delay;
        }
        m_leastDelay = std::min(m_leastDelay, delay);
        return press.timestamp() != m_pressedAt && delay > m_leastDelay + kLate;
    }

    std::pair<int, quint64> m_released; ///< the last key that was released, and when
    quint64 m_pressedAt = 0;            ///< the time of the last press that is no repeat
    qint64 m_leastDelay = 0;            ///< since then, between an event and its arrival
    QElapsedTimer m_clock;
};

} // namespace

void ignoreHeldKeys() {
    qApp->installEventFilter(new RepeatFilter(qApp));
}
