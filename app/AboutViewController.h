#pragma once

#include "ContentController.h"

#include <QLabel>

/// Controls the About window, which shows the program's version.
class AboutViewController : public ContentController {
    Q_OBJECT

public:
    Q_INVOKABLE AboutViewController() = default;

    Outlet<QLabel> LabelVersionString{m_outlets, "LabelVersionString"};

    void viewDidLoad() override;

public slots:
    /// Ends the modal run.
    void dismissAboutWindow(QObject* sender);
};
