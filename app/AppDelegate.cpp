#include "AppDelegate.h"

#include "WindowDescription.h"

void AppDelegate::ShowAboutWindow(QObject* /*sender*/) {
    WindowDescription(QStringLiteral("Main")).runModal(QStringLiteral("About Window Controller"));
}
