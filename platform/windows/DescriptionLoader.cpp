#include "windows/DescriptionLoader.h"

#include "host/FatalStop.h"
#include "windows/Bundle.h"
#include "windows/DescribedClasses.h"
#include "windows/MadeFromDescription.h"

#include <QFile>
#include <QLabel>
#include <QWidget>

#include <vector>

DescriptionLoader::DescriptionLoader() {
    clearPluginPaths(); // what a window is made of is in this program
}

QWidget* DescriptionLoader::loadFile(const QString& path) {
    QFile file(path);
    QWidget* window = file.open(QIODevice::ReadOnly) ? load(&file) : nullptr;
    if (!window)
        fatalStop("window description %s: %s", qUtf8Printable(path),
                  qUtf8Printable(file.isOpen() ? errorString() : file.errorString()));
    // By name, so that dense screens get the dense picture: a pixmap in the description is one for all.
    for (QLabel* label : window->findChildren<QLabel*>()) {
        if (const QVariant image = label->property("image"); image.isValid())
            label->setPixmap(mainBundle::imageNamed(image.toString()));
    }
    // Found before the first is told: it may delete children of its own, as a pop-up does with its list.
    std::vector<MadeFromDescription*> found;
    for (QWidget* control : window->findChildren<QWidget*>()) {
        if (auto* made = dynamic_cast<MadeFromDescription*>(control))
            found.push_back(made);
    }
    for (MadeFromDescription* made : found)
        made->didDecode();
    return window;
}

QWidget* DescriptionLoader::createWidget(const QString& className, QWidget* parent, const QString& name) {
    // "Line" is the loader's own word for a separator; it makes all others from their class names.
    static const QStringList own = availableWidgets();
    if (own.contains(className))
        return QUiLoader::createWidget(className, parent, name);
    const QMetaObject* known = describedClass(className.toLatin1());
    auto* control = known ? qobject_cast<QWidget*>(known->newInstance(Q_ARG(QWidget*, parent))) : nullptr;
    if (!control)
        fatalStop("window description: unknown class %s of %s", qUtf8Printable(className),
                  qUtf8Printable(name));
    control->setObjectName(name);
    return control;
}
