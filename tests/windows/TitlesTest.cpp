// Titles with colours and mnemonics, and how the controls draw them.

#include "ApplicationMain.h"
#include "AttributedRadioButton.h"
#include "CustomPopUpButton.h"
#include "Pictures.h"

#include <QTest>

#include <functional>

namespace {

/// A letter per code unit: w white, r red, - none; a capital one is underlined.
QString colorsOf(const AttributedString& text) {
    QString colors;
    for (qsizetype i = 0; i < text.string.size(); ++i) {
        const QColor color = text.colorAt(i);
        colors += color == Qt::white ? u'w' : color == Qt::red ? u'r' : u'-';
    }
    for (const QTextLayout::FormatRange& range : text.colors)
        if (range.format.fontUnderline())
            colors.replace(range.start, range.length, colors.mid(range.start, range.length).toUpper());
    return colors;
}

} // namespace

class TitlesTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }

    void attributedStrings() {
        using Row = std::tuple<QString, QString, QString, const char*>;
        for (const auto& [text, red, shown, colors] : {Row{"8m 8M 8M", "8M", "8m 8M 8M", "wwwrrwww"}, // the first one
                 {"High", "Low", "High", "wwww"}, {"", "", "", ""}, {"ab", "", "ab", "ww"},
                 {"\U0001F3A5ab", "Q", "\U0001F3A5ab", "www-"},                                 // a surrogate pair
                 {"e\u0301a", "a", "e\u0301a", "wwr"},                                          // a combining accent
                 {"\U0001F468\u200D\U0001F469x", "Q", "\U0001F468\u200D\U0001F469x", "ww----"}, // one family
                 {"O&ff", "O", "Off", "rWw"}, {"O&ff", "&f", "Off", "wRw"}, {"O&ff", "ff", "Off", "wRr"},
                 {"&On", "", "On", "Ww"}, {"On&", "", "On&", "www"}, {"O&&n", "", "O&n", "www"},
                 {"&&&On", "", "&On", "wWw"}}) {
            const AttributedString made = createAttributedString(text, Qt::white, red, Qt::red);
            const AttributedString title = withMnemonic(made, true);
            QCOMPARE(title.string, shown);
            QCOMPARE(title.font.pixelSize(), 14);
            QCOMPARE(colorsOf(title), colors);
            QCOMPARE(colorsOf(withMnemonic(made, false)), QString(colors).toLower());
        }
    }

    void radioButtonDrawsItsTitle() {
        AttributedRadioButton button;
        button.resize(100, 30);
        QVERIFY(counted(rendered(button)).size() > 1); // drawn without a title as well
        int reds = 0;                                  // pixels of a title in its own colour
        int others = 0;                                // pixels in another colour
        const auto draw = [&](const QString& title) {
            AttributedString large = createAttributedString(title, Qt::red, {}, {});
            large.font.setPixelSize(18);
            button.setAttributedTitle(large);
            reds = others = 0;
            for (const auto [color, count] : counted(rendered(button, 1, {20, 0, 80, 30})).asKeyValueRange())
                (qBlue(color) > 50 ? others : reds) += qRed(color) > 50 ? count : 0;
        };
        draw("Off");
        const int plain = reds;
        QVERIFY(plain > 0 && others == 0); // the style did not draw the title
        draw("&Off");
        QVERIFY(reds > plain);           // by its underline
        QCOMPARE(button.text(), "&Off"); // for the mnemonic
        QCOMPARE(button.font().pixelSize(), 18);
        for (const bool enabled : {true, false}) {
            button.setEnabled(enabled);
            button.setAttribute(Qt::WA_UnderMouse, enabled);
            draw("Off");
            QVERIFY(reds == 0 && others > 0); // white or grey
        }
    }

    void popUpStylesItsTitles() {
        CustomPopUpButton popUp(nullptr);
        popUp.resize(160, 28);
        popUp.addItemsWithTitles({QString(20, u'M'), "Two"});
        popUp.selectItemAtIndex(0);
        const QColor light = QColor::fromRgbF(1, 1, 1, 0.8F);
        const QStringList more{QString(), "Three"};
        using Step = std::pair<std::function<void()>, QColor>;
        for (const auto& [step, color] :
            {Step{[&] { popUp.didDecode(); }, Qt::black}, {[&] { popUp.addItemsWithTitles(more); }, light},
                {[&] { popUp.setItemStyles(CPOPUP_TEXT_BLACK_COLOR); }, Qt::black},
                {[&] { popUp.addItemsWithTitles({}); }, light}, // adds nothing, styles all
                {[&] { popUp.setItemStyles(CPOPUP_TEXT_BLACK_COLOR); }, Qt::black},
                {[&] { popUp.setItemStyles(7); }, light}}) {
            step();
            for (const int item : {0, int(popUp.menu()->actions().size()) - 1})
                QCOMPARE(popUp.attributedTitle(item).colorAt(0), color);
        }
        for (const auto& [enabled, least, most] : {std::tuple(true, 170, 204), {false, 90, 115}}) {
            popUp.setEnabled(enabled);
            const QImage face = rendered(popUp, 1, {5, 5, 130, 18});
            const QRect title = inked(face).translated(5, 5);
            QVERIFY(title.left() >= 12 && title.left() < 15);
            QVERIFY(title.right() > 112 && title.right() < 132); // elided before the divider
            QVERIFY2(std::abs(title.center().y() - 13) <= 1, "by the font's rounding");
            int brightest = 0;
            for (const auto [color, count] : counted(face).asKeyValueRange())
                brightest = std::max(brightest, qGray(color));
            QVERIFY(brightest >= least && brightest <= most);
        }
    }
};

QTEST_MAIN(TitlesTest)
#include "TitlesTest.moc"
