#include "AttributedString.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace {

constexpr int kTitlePixels = 14;

qsizetype perceivedCharacters(const QString& string) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, string);
    qsizetype count = 0;
    while (finder.toNextBoundary() != -1) ++count;
    return count;
}

void removeUnit(AttributedString& text, qsizetype index) {
    text.string.remove(index, 1);
    for (QTextLayout::FormatRange& range : text.formats) {
        if (range.start > index)
            --range.start;
        else if (range.start + range.length > index)
            --range.length;
    }
}

} // namespace

void AttributedString::addColor(qsizetype start, qsizetype length, const QColor& color) {
    QTextCharFormat format;
    format.setForeground(color);
    formats.append({static_cast<int>(start), static_cast<int>(length), format});
}

QColor AttributedString::colorAt(qsizetype index) const {
    const auto covers = [index](const QTextLayout::FormatRange& range) {
        return index >= range.start && index < range.start + range.length
            && range.format.hasProperty(QTextFormat::ForegroundBrush);
    };
    const auto found = std::find_if(formats.rbegin(), formats.rend(), covers);
    return found == formats.rend() ? QColor() : found->format.foreground().color();
}

QFont titleFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(kTitlePixels);
    return font;
}

AttributedString createAttributedString(
    const QString& fullString, const QColor& fullStringColor, const QString& subString, const QColor& subStringColor) {
    const qsizetype found = subString.isEmpty() ? -1 : fullString.indexOf(subString);
    AttributedString result{fullString, titleFont(), {}};
    result.addColor(0, perceivedCharacters(fullString), fullStringColor);
    if (found >= 0) result.addColor(found, subString.size(), subStringColor);
    return result;
}

AttributedString withoutMnemonicMark(const AttributedString& title, bool underline) {
    AttributedString shown = title;
    qsizetype mnemonic = -1;
    for (qsizetype mark = shown.string.indexOf(u'&'); mark >= 0 && mark + 1 < shown.string.size();
         mark = shown.string.indexOf(u'&', mark + 1)) {
        removeUnit(shown, mark);
        if (mnemonic < 0 && shown.string[mark] != u'&') // "&&" is a plain "&"
            mnemonic = mark;
    }
    if (underline && mnemonic >= 0) {
        QTextCharFormat format;
        format.setFontUnderline(true); // in the colour of the range around it
        shown.formats.append({static_cast<int>(mnemonic), 1, format});
    }
    return shown;
}

void drawAttributedString(QPainter& painter, const QRectF& box, AttributedString text) {
    text.string = QFontMetricsF(text.font).elidedText(text.string, Qt::ElideRight, box.width());
    QTextLayout layout(text.string, text.font, painter.device());
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.setFormats(text.formats);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (line.isValid()) line.setLineWidth(box.width());
    layout.endLayout();
    layout.draw(&painter, {box.left(), box.top() + (box.height() - layout.boundingRect().height()) / 2});
}
