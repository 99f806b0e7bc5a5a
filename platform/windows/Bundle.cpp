#include "windows/Bundle.h"

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

/// Later translators are asked first.
void install(QCoreApplication& application, const QLocale& locale, const QString& table,
             const QString& folder) {
    auto* translator = new QTranslator(&application);
    if (translator->load(locale, table, QStringLiteral("_"), folder))
        QCoreApplication::installTranslator(translator);
    else
        delete translator; // no such language: what was installed before stands
}

} // namespace

namespace mainBundle {

void open(QCoreApplication& application) {
    QDir::setSearchPaths(QStringLiteral("bundle"), {QStringLiteral(":/")});
    const QString table = QStringLiteral("tavro-setup-tool");
    const QString folder = QStringLiteral(":/i18n");
    install(application, QLocale(QLocale::English), table, folder);
    install(application, QLocale(), QStringLiteral("qtbase"),
            QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    // Whatever the language of numbers is: the locale's languages for texts may be others.
    install(application, QLocale(), table, folder);
}

std::optional<QVariantMap> infoDictionary() {
    QFile file(QStringLiteral("bundle:Info.json"));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isObject())
        return std::nullopt;
    return document.object().toVariantMap();
}

QPixmap imageNamed(const QString& name) {
    const QString path = QStringLiteral("bundle:images/") + name;
    // An icon looks for the "@2x" of dense screens. A screen between 1 and 2 shows it smaller.
    return QIcon(path).pixmap(QImageReader(path).size(), std::ceil(qGuiApp->devicePixelRatio()));
}

} // namespace mainBundle
