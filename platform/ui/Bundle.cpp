#include "Bundle.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QIcon>
#include <QImageReader>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <cmath>

namespace {

/// Installs a table of texts in the locale's language and gives that language; empty if there is none. Later
/// translators are asked first.
QString install(QCoreApplication& application, const QLocale& locale, const QString& table, const QString& folder) {
    auto* translator = new QTranslator(&application);
    if (!translator->load(locale, table, QStringLiteral("_"), folder)) {
        delete translator;
        return {};
    }
    QCoreApplication::installTranslator(translator);
    return translator->language();
}

} // namespace

namespace mainBundle {

void open(QCoreApplication& application, const QString& qtTranslations) {
    QDir::setSearchPaths(QStringLiteral("bundle"), {QStringLiteral(":/")});
    const QString table = QStringLiteral("tavro-setup-tool");
    const QString folder = QStringLiteral(":/i18n");
    install(application, QLocale(QLocale::English), table, folder);
    const QString language = install(application, QLocale(), table, folder);
    // Qt's own texts decide on the direction of the windows, so they are taken for a language of ours only.
    if (!language.isEmpty()) install(application, QLocale(language), QStringLiteral("qtbase"), qtTranslations);
}

std::optional<QVariantMap> infoDictionary() {
    QFile file(QStringLiteral("bundle:Info.json"));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isObject()) return std::nullopt;
    return document.object().toVariantMap();
}

QPixmap imageNamed(const QString& name) {
    const QString path = QStringLiteral("bundle:images/") + name;
    // An icon looks for the "@2x" of dense screens. A screen between 1 and 2 shows it smaller.
    return QIcon(path).pixmap(QImageReader(path).size(), std::ceil(qGuiApp->devicePixelRatio()));
}

} // namespace mainBundle
