#include "AboutViewController.h"

#include "Bundle.h"
#include "ModalRun.h"

void AboutViewController::viewDidLoad() {
    ContentController::viewDidLoad();
    const auto information = mainBundle::infoDictionary();
    if (!information) return;
    const QVariant version = information->value(QStringLiteral("CFBundleShortVersionString"));
    if (version.typeId() != QMetaType::QString) return;
    //: The program's version number follows, as in "Version 1.0.0".
    LabelVersionString->setText(Localizable::tr("VERSION", "Version") + u' ' + version.toString());
}

void AboutViewController::dismissAboutWindow(QObject* /*sender*/) {
    stopModal();
}
