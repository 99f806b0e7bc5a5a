#include "Look.h"

#include "Colors.h"
#include "SliderGeometry.h"

#include <QApplication>
#include <QFile>
#include <QMetaEnum>
#include <QPalette>
#include <QProxyStyle>

namespace {

const QColor kRed(0xC9, 0x2A, 0x30); // what acts
const QColor kInk(0x0C, 0x0D, 0x10);
const QColor kCard(0x14, 0x16, 0x19);
const QColor kText(0xD0, 0xD0, 0xD1);

QPalette darkPalette() {
    QPalette palette;
    palette.setColor(QPalette::Window, kInk);
    palette.setColor(QPalette::Base, kInk);
    palette.setColor(QPalette::AlternateBase, kCard);
    palette.setColor(QPalette::WindowText, kText);
    palette.setColor(QPalette::Text, kText);
    palette.setColor(QPalette::Highlight, kRed);
    palette.setColor(QPalette::HighlightedText, Qt::white);
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
    palette.setColor(QPalette::Accent, kRed); // otherwise the desktop's
#endif
    palette.setColor(QPalette::PlaceholderText, QColor(0x9A, 0xA0, 0xAA));
    palette.setColor(QPalette::ToolTipBase, QColor(0xF3, 0xF1, 0xF0));
    palette.setColor(QPalette::ToolTipText, kCard);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, kDisabledTextColor);
    palette.setColor(QPalette::Disabled, QPalette::Text, kDisabledTextColor);
    return palette;
}

/// Fusion's hit area for a knob grows with the font's DPI; the drawn knob does not.
class FusionWithFixedKnobs : public QProxyStyle {
public:
    FusionWithFixedKnobs() : QProxyStyle(QStringLiteral("Fusion")) {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        const bool ofKnob = metric == PM_SliderLength || metric == PM_SliderThickness;
        return ofKnob ? kKnobSize : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

/// The sheet with the palette's colours in place of `palette(ROLE)` and `palette(DisabledText)`: that of Qt 6.4 itself
/// knows neither PlaceholderText nor the roles of tool tips.
QString styleSheet(const QPalette& palette) {
    QFile file(QStringLiteral("bundle:Main/style.qss"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    QString sheet = QString::fromUtf8(file.readAll());
    const auto replace = [&sheet](const QString& role, const QColor& color) {
        sheet.replace(QStringLiteral("palette(%1)").arg(role), color.name());
    };
    const auto roles = QMetaEnum::fromType<QPalette::ColorRole>();
    for (int i = 0; i < roles.keyCount(); ++i) {
        const auto role = static_cast<QPalette::ColorRole>(roles.value(i));
        if (role < QPalette::NColorRoles) replace(QString::fromLatin1(roles.key(i)), palette.color(role));
    }
    replace(QStringLiteral("DisabledText"), kDisabledTextColor);
    return sheet;
}

} // namespace

void setLook(QApplication& application) {
    QApplication::setStyle(new FusionWithFixedKnobs);
    const QPalette palette = darkPalette();
    QApplication::setPalette(palette);
    application.setStyleSheet(styleSheet(palette));
}
