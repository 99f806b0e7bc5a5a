#include "AlertViewController.h"

#include "AboutViewController.h"
#include "ModalRun.h"

void AlertViewController::viewDidLoad() {
    ContentController::viewDidLoad();
    if (const auto text = AboutViewController::versionText()) LabelAlertVersion->setText(*text);
}

void AlertViewController::dismissAlertWindow(QObject* /*sender*/) {
    stopModal();
}
