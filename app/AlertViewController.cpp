#include "AlertViewController.h"

#include "ModalRun.h"

void AlertViewController::dismissAlertWindow(QObject* /*sender*/) {
    stopModal();
}
