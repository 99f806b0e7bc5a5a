#pragma once

#include <QCoreApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QPixmap>
#include <QString>

#include <optional>

/// The program's resources, under the search path "bundle:". They are built into the program.
namespace mainBundle {

/// Sets the search path and installs the texts in the user's language. Call once, after the application object is made
/// and before any window is. `qtTranslations` is the folder of Qt's own texts.
void open(
    QCoreApplication& application, const QString& qtTranslations = QLibraryInfo::path(QLibraryInfo::TranslationsPath));

/// Application information by key: "CFBundleShortVersionString", or "USBDevice", the identifiers of the device that the
/// program looks for as lsusb prints them ("1209:0001"). Absent if missing, unreadable or not a text.
[[nodiscard]] std::optional<QString> information(const QString& key);

/// "Version 1.0.0" in the user's language. Absent if the application information has no version.
[[nodiscard]] std::optional<QString> versionText();

/// A picture by its file name, at the resolution of the screen. Null if missing or not a PNG.
[[nodiscard]] QPixmap imageNamed(const QString& name);

/// The program's icon in the sizes that title bars and task lists show.
[[nodiscard]] QIcon icon();

} // namespace mainBundle

/// The texts of the code, by upper-case key: `Localizable::tr("HIGH", "High")`. An untranslated key is its own text.
struct Localizable {
    Q_DECLARE_TR_FUNCTIONS(Localizable)
};
