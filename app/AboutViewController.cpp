#include "AboutViewController.h"

#include "Bundle.h"
#include "ModalRun.h"

void AboutViewController::viewDidLoad() {
    ContentController::viewDidLoad();
    if (const auto text = mainBundle::versionText()) LabelVersionString->setText(*text);
}

void AboutViewController::dismissAboutWindow(QObject* /*sender*/) {
    stopModal();
}
