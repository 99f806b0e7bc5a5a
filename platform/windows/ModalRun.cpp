#include "windows/ModalRun.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QPointer>
#include <QPushButton>
#include <QWidget>
#include <QWindow>

#include <utility>

namespace {

QEventLoop* innermostRun = nullptr; // on the main thread, as all windows are

/// Ends a run whose window goes away by itself: no invisible modal run may remain.
class EndWithWindow : public QObject {
public:
    EndWithWindow(QWidget& window, QEventLoop& run) : m_run(run) {
        window.installEventFilter(this);
        QObject::connect(&window, &QObject::destroyed, &run, &QEventLoop::quit);
    }
    bool eventFilter(QObject* /*window*/, QEvent* event) override {
        if (event->type() == QEvent::Hide && !event->spontaneous()) // closing hides, minimising does not
            m_run.quit();
        return false;
    }

private:
    QEventLoop& m_run;
};

/// Tells the window system which window this one stands before, so that it is placed there.
void standBefore(QWidget& window, const QWidget* owner) {
    if (!owner || !owner->windowHandle())
        return;
    (void)window.winId(); // makes the window handle
    window.windowHandle()->setTransientParent(owner->windowHandle());
}

/// Texts that can be selected take the focus too, but the window begins at what ends it.
void focusDefaultButton(const QWidget& window) {
    for (QPushButton* button : window.findChildren<QPushButton*>()) {
        if (button->isDefault())
            button->setFocus();
    }
}

} // namespace

void runModalForWindow(QWidget& window) {
    QEventLoop run;
    const EndWithWindow endWithWindow(window, run);
    QEventLoop* outer = std::exchange(innermostRun, &run);
    window.setWindowModality(Qt::ApplicationModal);
    standBefore(window, QApplication::activeWindow());
    focusDefaultButton(window);
    window.show();
    window.raise();
    window.activateWindow();
    run.exec();
    innermostRun = outer;
}

void stopModal() {
    if (innermostRun)
        innermostRun->quit();
}
