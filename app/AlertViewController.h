#pragma once

#include "ContentController.h"

#include <QLabel>

/// Controls the window that says that the device can't be reached. It shows the program's version too: who sees this
/// window only can't open About.
class AlertViewController : public ContentController {
    Q_OBJECT

public:
    Q_INVOKABLE AlertViewController() = default;

    Outlet<QLabel> LabelAlertVersion{m_outlets, "LabelAlertVersion"};

    void viewDidLoad() override;

public slots:
    /// Ends the modal run; what comes after it is the opener's decision.
    void dismissAlertWindow(QObject* sender);
};
