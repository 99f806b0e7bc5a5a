#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QMetaType>
#include <QPainter>
#include <QRectF>
#include <QString>
#include <QTextLayout>

/// A text in one font with colours for ranges, counted in 16-bit code units. Where two ranges overlap, the later one is
/// drawn.
struct AttributedString {
    QString string;
    QFont font;
    QList<QTextLayout::FormatRange> formats;

    void addColor(qsizetype start, qsizetype length, const QColor& color);
    /// The colour of one code unit; invalid if it has none.
    [[nodiscard]] QColor colorAt(qsizetype index) const;
};
Q_DECLARE_METATYPE(AttributedString)

/// The system's general font at 14 points, where a point is one logical pixel.
[[nodiscard]] QFont titleFont();

/// `fullString` in the title font and in `fullStringColor`, its first `subString` in `subStringColor`. The first colour
/// covers as many code units as the string has user-perceived characters: if one of those has several code units, the
/// end of the string has no colour. A `subString` that does not occur colours nothing.
[[nodiscard]] AttributedString createAttributedString(
    const QString& fullString, const QColor& fullStringColor, const QString& subString, const QColor& subStringColor);

/// The title without its mnemonic mark "&". The character after the mark is underlined if `underline` is true.
/// "&&" becomes a plain "&".
[[nodiscard]] AttributedString withoutMnemonicMark(const AttributedString& title, bool underline);

/// Draws one line, vertically centred in `box` from its leading edge on and elided at its end. Text without a colour is
/// drawn in the painter's.
void drawAttributedString(QPainter& painter, const QRectF& box, AttributedString text);
