#include "ModalRun.h"

#include <QAbstractSlider>
#include <QApplication>
#include <QEventLoop>
#include <QLabel>
#include <QMetaProperty>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

/// The value that a control of an inert window had at the beginning of the run.
struct ShownValue {
    QPointer<QWidget> control;
    QMetaProperty property; ///< the one that the user edits
    QVariant value;
};

/// One modal run, from its window's appearance to its end.
class ModalRun : public QObject {
public:
    explicit ModalRun(QWidget& window);
    ~ModalRun() override { innermost = m_outer; }

    void exec() { m_loop.exec(); }
    void stop() { m_loop.quit(); }
    [[nodiscard]] bool makesInert(const QWidget& control) const { return control.window() != &m_window; }
    void restore(const QWidget& window) const;
    bool eventFilter(QObject* object, QEvent* event) override;

    static inline ModalRun* innermost = nullptr; // on the main thread, as all windows are

private:
    void rememberAndRelease(QWidget& window);

    QWidget& m_window;
    QEventLoop m_loop;
    ModalRun* m_outer;
    std::vector<ShownValue> m_shown;
};

ModalRun::ModalRun(QWidget& window) : m_window(window), m_outer(std::exchange(innermost, this)) {
    for (QWidget* other : QApplication::topLevelWidgets()) {
        if (other != &window) rememberAndRelease(*other);
    }
    qApp->installEventFilter(this);
    QObject::connect(&window, &QObject::destroyed, &m_loop, &QEventLoop::quit);
}

/// Releases pressed grooves, which would repeat without end, and pictures, which would move the window after the run:
/// the window gets no mouse events during it. Buttons are not released, since a release is a click.
void ModalRun::rememberAndRelease(QWidget& window) {
    for (QWidget* control : window.findChildren<QWidget*>()) {
        if (qobject_cast<QAbstractSlider*>(control) || qobject_cast<QLabel*>(control)) {
            QMouseEvent release(QEvent::MouseButtonRelease, QPointF(), control->mapToGlobal(QPointF()), Qt::LeftButton,
                Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(control, &release);
        }
        const QMetaProperty property = control->metaObject()->userProperty();
        if (property.isValid()) m_shown.push_back({control, property, property.read(control)});
    }
}

void ModalRun::restore(const QWidget& window) const {
    for (const auto& [control, property, value] : m_shown) {
        if (control && control->window() == &window) (void)property.write(control, value); // of the property's own type
    }
}

bool ModalRun::eventFilter(QObject* object, QEvent* event) {
    // Hiding ends the run. Closing hides the window; minimising is a spontaneous event.
    if (object == &m_window && event->type() == QEvent::Hide && !event->spontaneous()) m_loop.quit();
    return false;
}

/// The active window, or a visible one while another program is active; null if there is none.
QWidget* ownerOf(const QWidget& window) {
    if (QWidget* active = QApplication::activeWindow()) return active;
    const QWidgetList others = QApplication::topLevelWidgets();
    const auto isOwner = [&window](const QWidget* other) {
        return other != &window && other->isVisible() && other->windowType() == Qt::Window;
    };
    const auto found = std::ranges::find_if(others, isOwner);
    return found == others.end() ? nullptr : *found;
}

/// Makes the window transient for its owner: the window system keeps it above the owner.
void makeTransient(QWidget& window) {
    const QWidget* owner = ownerOf(window);
    if (!owner || !owner->windowHandle()) return;
    (void)window.winId(); // makes the window handle
    window.windowHandle()->setTransientParent(owner->windowHandle());
}

/// The first focus belongs to the button that ends the run, not to a selectable text.
void focusDefaultButton(const QWidget& window) {
    for (QPushButton* button : window.findChildren<QPushButton*>()) {
        if (button->isDefault()) button->setFocus();
    }
}

} // namespace

void runModalForWindow(QWidget& window) {
    ModalRun run(window);
    window.setWindowModality(Qt::ApplicationModal);
    makeTransient(window);
    focusDefaultButton(window);
    window.show();
    window.raise();
    window.activateWindow();
    run.exec();
}

bool isBehindModalRun(const QWidget& control) {
    return ModalRun::innermost != nullptr && ModalRun::innermost->makesInert(control);
}

bool dropBehindModalRun(const QWidget& control) {
    if (!isBehindModalRun(control)) return false;
    ModalRun::innermost->restore(*control.window());
    return true;
}

void stopModal() {
    if (ModalRun::innermost) ModalRun::innermost->stop();
}
