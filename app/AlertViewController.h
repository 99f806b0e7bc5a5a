#pragma once

#include "ContentController.h"
#include "ModalRun.h"

/// Controls the alert, which says that the device can't be reached. All its texts come from the description.
class AlertViewController : public ContentController {
    Q_OBJECT

public:
    Q_INVOKABLE AlertViewController() = default;

public slots:
    /// Ends the modal run and does nothing else: the caller that opened the alert ends the program.
    void dismissAlertWindow(QObject* /*sender*/) { stopModal(); }
};
