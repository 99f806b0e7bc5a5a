#include "AppDelegate.h"

#include "ModalRun.h"
#include "WindowDescription.h"

void AppDelegate::ShowAboutWindow(QObject* /*sender*/) {
    const WindowDescription description(QStringLiteral("Main"));
    const auto controller =
        description.instantiateWindowController(QStringLiteral("About Window Controller"));
    if (QWidget* window = controller->window())
        runModalForWindow(*window);
}
