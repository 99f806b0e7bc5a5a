#include "AboutViewController.h"

#include "Bundle.h"
#include "ModalRun.h"

void AboutViewController::viewDidLoad() {
    ContentController::viewDidLoad();
    if (const auto text = versionText()) LabelVersionString->setText(*text);
}

std::optional<QString> AboutViewController::versionText() {
    const auto information = mainBundle::infoDictionary();
    if (!information) return std::nullopt;
    const QVariant version = information->value(QStringLiteral("CFBundleShortVersionString"));
    if (version.typeId() != QMetaType::QString) return std::nullopt;
    //: The program's version number follows, as in "Version 1.0.0".
    return Localizable::tr("VERSION", "Version") + u' ' + version.toString();
}

void AboutViewController::dismissAboutWindow(QObject* /*sender*/) {
    stopModal();
}
