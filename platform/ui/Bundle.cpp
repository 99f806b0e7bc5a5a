#include "Bundle.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImageReader>
#include <QJsonDocument>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <utility>

namespace {

/// Installs a table of texts in the locale's language and returns that language, empty if there is none. Qt asks the
/// translator installed last first.
QString install(QCoreApplication& application, const QLocale& locale, const QString& table, const QString& folder) {
    auto* translator = new QTranslator(&application);
    if (!translator->load(locale, table, QStringLiteral("_"), folder)) {
        delete translator;
        return {};
    }
    QCoreApplication::installTranslator(translator);
    return translator->language();
}

/// Null if unreadable. The format is named, so that Qt asks none of the desktop's image plug-ins.
QImage readPng(const QString& path) {
    QImageReader reader(path, "png");
    reader.setAutoDetectImageFormat(false);
    return reader.read();
}

} // namespace

namespace mainBundle {

void open(QCoreApplication& application, const QString& qtTranslations) {
    QDir::setSearchPaths(QStringLiteral("bundle"), {QStringLiteral(":/")});
    const QString table = QStringLiteral("tavro-setup-tool");
    const QString folder = QStringLiteral(":/i18n");
    install(application, QLocale(QLocale::English), table, folder);
    const QString language = install(application, QLocale(), table, folder);
    // Qt's texts set the layout direction, so they are installed only together with the program's own.
    if (!language.isEmpty()) install(application, QLocale(language), QStringLiteral("qtbase"), qtTranslations);
}

std::optional<QString> information(const QString& key) {
    QFile file(QStringLiteral("bundle:Info.json"));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    const QJsonValue value = QJsonDocument::fromJson(file.readAll())[key];
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QString> versionText() {
    const auto version = information(QStringLiteral("CFBundleShortVersionString"));
    if (!version) return std::nullopt;
    //: The program's version number follows, as in "Version 1.0.0".
    return Localizable::tr("VERSION", "Version") + u' ' + *version;
}

QPixmap imageNamed(const QString& name) {
    const bool dense = qGuiApp->devicePixelRatio() > 1; // between 1 and 2 the dense picture is drawn smaller
    QString path = QStringLiteral("bundle:images/") + name;
    if (dense) path.insert(path.lastIndexOf('.'), QLatin1String("@2x"));
    QImage image = readPng(path);
    image.setDevicePixelRatio(dense ? 2 : 1);
    return QPixmap::fromImage(std::move(image));
}

QIcon icon() {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128})
        icon.addPixmap(QPixmap::fromImage(readPng(QStringLiteral("bundle:icons/%1.png").arg(size))));
    return icon;
}

} // namespace mainBundle
