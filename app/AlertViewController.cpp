#include "AlertViewController.h"

#include "windows/ModalRun.h"

void AlertViewController::dismissAlertWindow(QObject* /*sender*/) {
    stopModal();
}
