#pragma once

#include "ContentController.h"

#include <QLabel>

#include <optional>

/// Controls the About window, which shows the program's version.
class AboutViewController : public ContentController {
    Q_OBJECT

public:
    Q_INVOKABLE AboutViewController() = default;

    Outlet<QLabel> LabelVersionString{m_outlets, "LabelVersionString"};

    void viewDidLoad() override;

    /// "Version 1.0.0" in the user's language. Absent if the application information has no version.
    [[nodiscard]] static std::optional<QString> versionText();

public slots:
    /// Ends the modal run.
    void dismissAboutWindow(QObject* sender);
};
