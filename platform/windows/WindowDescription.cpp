#include "windows/WindowDescription.h"

#include "host/FatalStop.h"
#include "windows/DescribedClasses.h"
#include "windows/DescriptionLoader.h"
#include "windows/ModalRun.h"
#include "windows/UserAction.h"

#include <QAction>
#include <QFile>
#include <QJsonDocument>
#include <QMetaMethod>

#include <array>

namespace {

constexpr auto kActionProperty = "action";

QJsonObject readIndex(const QString& name) {
    QFile file(QStringLiteral("bundle:%1/%1.json").arg(name));
    if (file.open(QIODevice::ReadOnly)) {
        const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
        if (document.isObject())
            return document.object();
    }
    fatalStop("window description \"%s\" is missing or damaged", qUtf8Printable(name));
}

/// A new object of the class that an index entry names under `key`.
std::unique_ptr<QObject> makeObject(const QJsonObject& entry, const QString& key) {
    const QString className = entry[key].toString();
    const QMetaObject* known = describedClass(className.toLatin1());
    std::unique_ptr<QObject> object(known ? known->newInstance() : nullptr);
    if (!object)
        fatalStop("window description: unknown controller class \"%s\"", qUtf8Printable(className));
    return object;
}

void connectHandler(const QWidget& window, QObject& control, const QString& handler,
                    const std::array<QObject*, 2>& responders) {
    const QByteArray signature = handler.toLatin1() + "(QObject*)";
    for (QObject* responder : responders) {
        const int index = responder ? responder->metaObject()->indexOfSlot(signature.constData()) : -1;
        if (index < 0)
            continue;
        const QMetaMethod method = responder->metaObject()->method(index);
        connectUserAction(control, [method, responder, &window, &control] {
            if (!dropBehindModalRun(window))
                (void)method.invoke(responder, Qt::DirectConnection,
                                    Q_ARG(QObject*, &control)); // checked above
        });
        return;
    }
    fatalStop("window description: no handler %s for %s", qUtf8Printable(handler),
              qUtf8Printable(control.objectName()));
}

void connectActions(const QWidget& window, const std::array<QObject*, 2>& responders) {
    for (QAction* action : window.actions())
        connectHandler(window, *action, action->objectName(), responders);
    for (QWidget* control : window.findChildren<QWidget*>()) {
        const QVariant handler = control->property(kActionProperty);
        if (handler.isValid())
            connectHandler(window, *control, handler.toString(), responders);
    }
}

} // namespace

WindowDescription::WindowDescription(const QString& name) : m_name(name), m_index(readIndex(name)) {
}

QString WindowDescription::initialController() const {
    return m_index[QStringLiteral("initialController")].toString();
}

std::unique_ptr<QObject> WindowDescription::instantiateController(const QString& identifier,
                                                                  QObject* responder) const {
    const QJsonValue entry = m_index[QStringLiteral("controllers")][identifier];
    if (!entry.isObject())
        fatalStop(R"(window description "%s" has no controller "%s")", qUtf8Printable(m_name),
                  qUtf8Printable(identifier));
    auto controller = makeObject(entry.toObject(), QStringLiteral("class"));
    if (auto* windowController = qobject_cast<WindowController*>(controller.get()))
        loadWindow(*windowController, entry.toObject(), responder);
    return controller;
}

std::unique_ptr<WindowController> WindowDescription::instantiateWindowController(const QString& identifier,
                                                                                 QObject* responder) const {
    auto controller = instantiateController(identifier, responder);
    auto* windowController = qobject_cast<WindowController*>(controller.get());
    if (!windowController)
        fatalStop("window description: \"%s\" is a %s, not a window controller", qUtf8Printable(identifier),
                  controller->metaObject()->className());
    (void)controller.release(); // owned by what is returned
    return std::unique_ptr<WindowController>(windowController);
}

void WindowDescription::loadWindow(WindowController& controller, const QJsonObject& entry,
                                   QObject* responder) const {
    const QString file = entry[QStringLiteral("window")].toString();
    if (file.isEmpty())
        return;
    auto object = makeObject(entry, QStringLiteral("content"));
    auto* content = qobject_cast<ContentController*>(object.get());
    if (!content)
        fatalStop("window description: %s does not control a window's content",
                  object->metaObject()->className());
    (void)object.release();
    controller.setContentController(std::unique_ptr<ContentController>(content));
    controller.setWindow(std::unique_ptr<QWidget>(
        DescriptionLoader().loadFile(QStringLiteral("bundle:%1/%2").arg(m_name, file))));
    for (OutletBase* outlet : content->outlets())
        outlet->connectBelow(*controller.window());
    connectActions(*controller.window(), {content, responder});
    content->viewDidLoad();
}
