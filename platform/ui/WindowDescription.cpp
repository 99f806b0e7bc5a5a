#include "WindowDescription.h"

#include "Bundle.h"
#include "DescribedClasses.h"
#include "FatalStop.h"
#include "ModalRun.h"

#include <QAbstractSlider>
#include <QAction>
#include <QFile>
#include <QJsonDocument>
#include <QLabel>
#include <QMenu>
#include <QMetaMethod>
#include <QPushButton>
#include <QRadioButton>

#include <array>
#include <functional>
#include <memory>
#include <utility>

namespace {

constexpr auto kActionProperty = "action";

QJsonObject readIndex(const QString& name) {
    QFile file(QStringLiteral("bundle:%1/%1.json").arg(name));
    if (file.open(QIODevice::ReadOnly)) {
        const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
        if (document.isObject()) return document.object();
    }
    fatalStop("window description \"%s\" is missing or damaged", qUtf8Printable(name));
}

/// A new object of the class that an index entry names under `key`.
std::unique_ptr<QObject> makeObject(const QJsonObject& entry, const QString& key) {
    const QString className = entry[key].toString();
    const QMetaObject* known = describedClass(className.toLatin1());
    std::unique_ptr<QObject> object(known ? known->newInstance() : nullptr);
    if (!object) fatalStop("window description: unknown controller class \"%s\"", qUtf8Printable(className));
    return object;
}

/// A new window of the description of that name.
std::unique_ptr<QWidget> makeWindow(const QString& file) {
    const MakeWindow make = describedWindows().value(file);
    if (!make) fatalStop("window description: unknown window %s", qUtf8Printable(file));
    std::unique_ptr<QWidget> window = make();
    for (QLabel* label : window->findChildren<QLabel*>()) {
        const QVariant image = label->property("image"); // a name, so that dense screens get the dense picture
        if (image.isValid()) label->setPixmap(mainBundle::imageNamed(image.toString()));
        if (label->property("showsVersion").toBool()) label->setText(mainBundle::versionText().value_or(label->text()));
        if (label->property("namesDevice").toBool())
            label->setText(label->text().arg(mainBundle::information("USBDevice").value_or(QString())));
    }
    for (QWidget* control : window->findChildren<QWidget*>()) {
        if (auto* made = dynamic_cast<MadeFromDescription*>(control)) made->didDecode();
    }
    return window;
}

/// A press of the selected button is an action too, for which `toggled` is not emitted; assistive technology toggles
/// without a press, for which `clicked` is not emitted. A press that selects emits both while one event is handled:
/// after `toggled` the action waits for the end of that event, and is dropped if `clicked` ran it.
void connectRadioButton(QRadioButton& button, const std::function<void()>& act) {
    const auto waiting = std::make_shared<bool>(false);
    QObject::connect(&button, &QRadioButton::clicked, &button, [waiting, act] {
        *waiting = false;
        act();
    });
    QObject::connect(&button, &QRadioButton::toggled, &button, [waiting](bool selected) { *waiting = selected; });
    const auto actIfWaiting = [waiting, act] {
        if (std::exchange(*waiting, false)) act();
    };
    QObject::connect(&button, &QRadioButton::toggled, &button, actIfWaiting, Qt::QueuedConnection);
}

/// Runs `act` at every action of the user on a control, by mouse, wheel, keys or assistive technology. A control of a
/// kind that has no action is a fatal stop.
void connectUserAction(QObject& control, const std::function<void()>& act) {
    if (auto* action = qobject_cast<QAction*>(&control))
        QObject::connect(action, &QAction::triggered, action, act);
    else if (auto* slider = qobject_cast<QAbstractSlider*>(&control))
        QObject::connect(slider, &QAbstractSlider::valueChanged, slider, act);
    else if (auto* menu = control.findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly)) // of a pop-up button
        QObject::connect(menu, &QMenu::triggered, menu, act);
    else if (auto* radio = qobject_cast<QRadioButton*>(&control))
        connectRadioButton(*radio, act);
    else if (auto* button = qobject_cast<QPushButton*>(&control))
        QObject::connect(button, &QPushButton::clicked, button, act);
    else
        fatalStop("window description: %s is of a kind without an action", qUtf8Printable(control.objectName()));
}

void connectHandler(
    const QWidget& window, QObject& control, const QString& handler, const std::array<QObject*, 2>& responders) {
    const QByteArray signature = handler.toLatin1() + "(QObject*)";
    for (QObject* responder : responders) {
        const int index = responder ? responder->metaObject()->indexOfSlot(signature.constData()) : -1;
        if (index < 0) continue;
        const QMetaMethod method = responder->metaObject()->method(index);
        connectUserAction(control, [method, responder, &window, &control] {
            if (!dropBehindModalRun(window))
                (void)method.invoke(responder, Qt::DirectConnection, Q_ARG(QObject*, &control)); // checked above
        });
        return;
    }
    fatalStop(
        "window description: no handler %s for %s", qUtf8Printable(handler), qUtf8Printable(control.objectName()));
}

void connectActions(const QWidget& window, const std::array<QObject*, 2>& responders) {
    for (QObject* control : window.findChildren<QObject*>()) {
        const QVariant handler = control->property(kActionProperty);
        if (handler.isValid()) connectHandler(window, *control, handler.toString(), responders);
    }
}

} // namespace

WindowDescription::WindowDescription(const QString& name) : m_name(name), m_index(readIndex(name)) {
}

QString WindowDescription::initialController() const {
    return m_index[QStringLiteral("initialController")].toString();
}

std::unique_ptr<QObject> WindowDescription::instantiateController(const QString& identifier, QObject* responder) const {
    const QJsonValue entry = m_index[QStringLiteral("controllers")][identifier];
    if (!entry.isObject())
        fatalStop(
            R"(window description "%s" has no controller "%s")", qUtf8Printable(m_name), qUtf8Printable(identifier));
    auto controller = makeObject(entry.toObject(), QStringLiteral("class"));
    if (auto* windowController = qobject_cast<WindowController*>(controller.get()))
        loadWindow(*windowController, entry.toObject(), responder);
    return controller;
}

std::unique_ptr<WindowController> WindowDescription::instantiateWindowController(
    const QString& identifier, QObject* responder) const {
    auto controller = instantiateController(identifier, responder);
    auto* windowController = qobject_cast<WindowController*>(controller.get());
    if (!windowController)
        fatalStop("window description: \"%s\" is a %s, not a window controller", qUtf8Printable(identifier),
            controller->metaObject()->className());
    (void)controller.release(); // the returned window controller owns it
    return std::unique_ptr<WindowController>(windowController);
}

void WindowDescription::runModal(const QString& identifier) const {
    const auto controller = instantiateWindowController(identifier);
    if (QWidget* window = controller->window()) runModalForWindow(*window);
}

void WindowDescription::loadWindow(WindowController& controller, const QJsonObject& entry, QObject* responder) const {
    const QString file = entry[QStringLiteral("window")].toString();
    if (file.isEmpty()) return;
    auto object = makeObject(entry, QStringLiteral("content"));
    auto* content = qobject_cast<ContentController*>(object.get());
    if (!content)
        fatalStop("window description: %s does not control a window's content", object->metaObject()->className());
    (void)object.release();
    controller.setContentController(std::unique_ptr<ContentController>(content));
    controller.setWindow(makeWindow(file));
    for (OutletBase* outlet : content->outlets()) outlet->connectBelow(*controller.window());
    connectActions(*controller.window(), {content, responder});
    content->viewDidLoad();
}
