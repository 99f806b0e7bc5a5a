#pragma once

#include <QCoreApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QPixmap>
#include <QString>
#include <QVariantMap>

#include <optional>

/// The program's resources, under the search path "bundle:". They are built into the program.
namespace mainBundle {

/// Sets the search path and installs the texts in the user's language. Call once, after the application object is made
/// and before any window is. `qtTranslations` is the folder of Qt's own texts.
void open(
    QCoreApplication& application, const QString& qtTranslations = QLibraryInfo::path(QLibraryInfo::TranslationsPath));

/// Application information by key ("CFBundleShortVersionString"). Absent if missing or unreadable.
[[nodiscard]] std::optional<QVariantMap> infoDictionary();

/// "Version 1.0.0" in the user's language. Absent if the application information has no version.
[[nodiscard]] std::optional<QString> versionText();

/// Identifiers of the USB device that the program looks for, as lsusb prints them: "1209:0001". Empty if unknown.
[[nodiscard]] QString deviceIdentifiers();

/// A picture by its file name, at the resolution of the screen. Null if missing or not a PNG.
[[nodiscard]] QPixmap imageNamed(const QString& name);

/// The program's icon in the sizes that title bars and task lists show.
[[nodiscard]] QIcon icon();

} // namespace mainBundle

/// The texts of the code, by upper-case key: `Localizable::tr("HIGH", "High")`. An untranslated key is its own text.
struct Localizable {
    Q_DECLARE_TR_FUNCTIONS(Localizable)
};
