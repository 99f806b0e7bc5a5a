#pragma once

#include "ContentController.h"

/// Controls the window that says that the device can't be reached. All its texts come from the description.
class AlertViewController : public ContentController {
    Q_OBJECT

public:
    Q_INVOKABLE AlertViewController() = default;

public slots:
    /// Ends the modal run; what comes after it is the opener's decision.
    void dismissAlertWindow(QObject* sender);
};
