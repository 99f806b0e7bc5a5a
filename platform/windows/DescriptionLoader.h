#pragma once

#include <QUiLoader>

/// Makes windows from .ui files. A custom class that has not been registered is a fatal stop; QUiLoader
/// alone would quietly put its base class in its place.
class DescriptionLoader : public QUiLoader {
    Q_OBJECT

public:
    DescriptionLoader();
    /// The window in the file. A file that is missing or damaged is a fatal stop.
    [[nodiscard]] QWidget* loadFile(const QString& path);
    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override;
};
