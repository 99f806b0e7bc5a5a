// The drawn controls and their titles, checked by numbers: no picture of parts that the toolkit draws is compared.

#include "CustomSliderCell.h"
#include "WindowTest.h"

namespace {

constexpr QRgb kBlack = 0xFF000000;
constexpr QRgb kWhite = 0xFFFFFFFF;
constexpr QRgb kCard = 0x141619;
constexpr QRgb kInk = 0x0C0D10;
constexpr QRgb kRed = 0xBF2626;
constexpr QRgb kTick = 0x7D7D7D; // thinner than a pixel, so never quite white
constexpr int kThin = 60;

enum class State : unsigned char { Plain, Focused, Disabled };

/// Drawn parts and their hit areas must not grow with the fonts.
const bool kOnlyFontsAreLarge = qputenv("QT_FONT_DPI", "144") && qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");

/// The colour of a control at some points, in logical pixels.
struct Seen {
    const char* part;
    const char* control;
    State state;
    QRgb color;
    std::vector<QPointF> points;
    int slack = 3; ///< of each colour component
};

const char* const kAtMin = "SliderMicrophoneVolume"; // 206 wide: a bar of 200
const char* const kAtMax = "SliderHeadphoneVolume";
const char* const kQuarters = "SliderHmdiAuxVolume";
const char* const kPopUp = "PopupRecordQuality";

const std::vector<Seen> kSeen{
    {"track", kAtMin, State::Plain, kWhite, {{100.5, 33.5}, {100.5, 35.5}, {19.5, 34.5}, {201.5, 34.5}}},
    {"round the track", kAtMin, State::Plain, kCard, {{100.5, 32.5}, {100.5, 36.5}, {203.5, 34.5}, {18.5, 34.5}}},
    {"ticks", kAtMin, State::Plain, kTick, {{10.6, 22}, {19.7, 20.5}, {19.7, 23.5}, {195.7, 22}}, kThin},
    {"round the ticks", kAtMin, State::Plain, kCard, {{19.7, 19.5}, {19.7, 24.5}, {18.5, 22}, {21.5, 22}, {204.9, 22}}},
    {"quarters", kQuarters, State::Plain, kTick, {{10.6, 22}, {56.8, 22}}, kThin},
    {"no twentieths", kQuarters, State::Plain, kCard, {{19.7, 22}, {29, 22}}},
    {"knob", kAtMin, State::Plain, 0xF64D58, {{10.5, 35}, {7.5, 35}, {13.5, 35}}, 6},
    {"knob's outline", kAtMin, State::Plain, 0x09090B, {{4.5, 34.5}, {16.5, 34.5}, {10.5, 28.5}, {10.5, 40.5}}},
    {"knob, disabled", kAtMax, State::Disabled, 0x676C74, {{195.5, 34.5}}, 6},
    {"left ring", kAtMin, State::Focused, kWhite, {{0.5, 34.5}, {1.5, 34.5}, {10.5, 24.5}, {10.5, 44.5}}},
    {"right ring", kAtMax, State::Focused, kWhite, {{204.5, 34.5}, {205.5, 34.5}, {186.5, 34.5}, {193.5, 24.5}}},
    {"within the ring", kAtMax, State::Focused, kCard, {{187.5, 34.5}, {203.5, 34.5}, {195.5, 26.5}, {195.5, 42.5}}},
    {"round the ring", kAtMax, State::Focused, kCard, {{193.5, 45.5}, {192.5, 23.5}}},
    {"border", kPopUp, State::Plain, kRed, {{0.5, 14.5}, {159.5, 14.5}, {80.5, 0.5}, {80.5, 27.5}}},
    {"divider", kPopUp, State::Plain, kRed, {{139.2, 1.5}, {139.2, 26.5}}},
    {"chevrons", kPopUp, State::Plain, kRed, {{145.75, 8}, {149.75, 7.6}, {145.75, 16.9}, {149.75, 17}}, 2 * kThin},
    {"face", kPopUp, State::Plain, kBlack,
        {{80.5, 1.5}, {80.5, 26.5}, {147.5, 12.5}, {147.5, 4.5}, {147.5, 20.5}, {142.5, 10.5}, {153.5, 10.5}}},
    {"frame", kPopUp, State::Focused, kWhite, {{2.5, 14.5}, {3.5, 14.5}, {136.5, 14.5}, {80.5, 2.5}, {80.5, 25.5}}},
    {"round the frame", kPopUp, State::Focused, kBlack, {{1.5, 14.5}, {4.5, 14.5}, {137.5, 14.5}, {80.5, 4.5}}},
    {"radio button's dot", "HdcpOffButton", State::Plain, 0xF0484E, {{16, 15}, {13.5, 15}, {16, 18}}},
    {"radio button's field", "HdcpOffButton", State::Plain, kInk, {{10.4, 15}, {16, 9.4}}},
    {"radio button's ring", "HdcpOffButton", State::Plain, kWhite, {{7.6, 15}, {24.4, 15}}, kThin},
    {"not selected", "HdcpOnButton", State::Plain, kInk, {{16, 15}, {13.5, 15}, {10.4, 15}}},
    {"radio button, disabled", "HdcpOffButton", State::Disabled, 0x6F747E, {{16, 15}, {7.6, 15}}, kThin / 2},
    {"radio button's frame", "HdcpOffButton", State::Focused, kWhite, {{0.5, 15.5}, {1.5, 15.5}, {50.5, 0.5}}},
    {"rows", nullptr, State::Plain, 0xF3F1F0, {{120.5, 3.5}, {157.5, 27.5}, {120.5, 58.5}}},
    {"chosen row", nullptr, State::Plain, 0xF3C6C4, {{120.5, 30.5}, {2.5, 43.5}, {157.5, 55.5}}},
    {"list's border", nullptr, State::Plain, kRed, {{0.5, 43.5}, {80.5, 0.5}}},
};

/// The part of a picture that is brighter than its dark background.
QRect inked(const QImage& image) {
    QRegion bright;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) > 60) bright += QRect(x, y, 1, 1);
    return bright.boundingRect();
}

/// A letter per code unit: w white, r red, - none; a capital one is underlined.
QString colorsOf(const AttributedString& text) {
    QString colors;
    for (qsizetype i = 0; i < text.string.size(); ++i) {
        const QColor color = text.colorAt(i);
        colors += color == Qt::white ? u'w' : color == Qt::red ? u'r' : u'-';
    }
    for (const QTextLayout::FormatRange& range : text.formats)
        if (range.format.fontUnderline())
            colors.replace(range.start, range.length, colors.mid(range.start, range.length).toUpper());
    return colors;
}

} // namespace

class ControlsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        QCoreApplication::setAttribute(Qt::AA_Use96Dpi, false); // Qt Test sets it
        setUpApplication(*qApp);
    }
    void init() { TestHost::reset(); }

    void geometry() {
        using enum TickSpacing;
        using Row = std::tuple<double, TickSpacing, std::size_t, double>; // width, spacing; ticks, the last one
        for (const auto& [width, spacing, count, last] :
            {Row{200, Twentieth, 21, 195.7115}, {200, Quarter, 5, 195.7115}, {0, Twentieth, 0, 0}, // not drawn yet
                {10.5, Quarter, 0, 0},                        // too narrow for the first
                {10.6, Twentieth, 1, 10.526316},              // the step is negative
                {20.0 / 1.35 + 1e-12, Quarter, 1, 10.526316}, // the step is below the rounding
                {20.0 / 1.9, Quarter, 0, 0},                  // the first would be at the end
                {16, Quarter, 19, 15.859649}}) {
            const auto positions = tickPositions(width, 20, spacing);
            QCOMPARE(positions.size(), count);
            QVERIFY(positions.empty() || std::abs(positions.front() - 10.526316) < 1e-6);
            QVERIFY2(positions.empty() || std::abs(positions.back() - last) < 1e-5, qPrintable(QString::number(width)));
        }
        QCOMPARE(trackRect({3, 33, 200, 99}), QRectF(3, 33, 200, 3)); // always 3 high
        for (const auto& [knob, left] : {std::tuple(0, 0.0), {92, 87.5}, {185, 176.0}})
            QCOMPARE(valueRect(knobRect(knob), 206, 30), QRectF(left, 2, 30, 16));
    }

    void drawnPartsHaveTheirColors() {
        device().audio = {0, 255, 0, 0, 0, 255, 0};
        const SettingsWindow settings;
        for (const char* slider : {kAtMin, kAtMax, kQuarters}) settings.control(slider).setFixedSize(206, 48);
        for (const char* button : {"HdcpOnButton", "HdcpOffButton"}) settings.control(button).setFixedSize(100, 30);
        auto& popUp = settings.control<CustomPopUpButton>(kPopUp);
        for (const Seen& row : kSeen) {
            if (!row.control) popUp.showMenu();
            QWidget& control = row.control ? settings.control(row.control) : static_cast<QWidget&>(*popUp.menu());
            settings.control(row.state == State::Focused ? row.control : "QuitButton").setFocus();
            control.setEnabled(row.state != State::Disabled);
            for (const double scale : {1.0, 2.0}) {
                const QImage image = rendered(control, scale);
                for (const QPointF point : row.points) {
                    const QRgb color = image.pixel((point * scale - QPointF(0.5, 0.5)).toPoint());
                    for (const unsigned shift : {0U, 8U, 16U}) // blue, green, red
                        QVERIFY2(std::abs(int(color >> shift & 0xFF) - int(row.color >> shift & 0xFF)) <= row.slack,
                            qPrintable(row.part + QDebug::toString(point) + QColor(color).name()));
                }
            }
            control.setEnabled(true);
        }
    }

    void linesAreSharpAtEveryScale() {
        const SettingsWindow settings;
        settings.control("QuitButton").setFocus();
        for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0}) {
            const QImage row = rendered(settings.control(kPopUp), scale, {0, 24, 160, 1}); // below title and chevrons
            const int red = 3 * qRound(scale) * row.height();                              // both sides and the divider
            const int black = row.width() * row.height() - red;
            QCOMPARE(counted(row), (QHash<QRgb, int>{{0xFF000000 | kRed, red}, {kBlack, black}}));
        }
    }

    void knobAndTextAreAtTheValue() {
        CustomSliderCell slider(nullptr);
        slider.resize(206, 48);
        slider.setRange(0, 255);
        const auto text = [&slider] { return inked(rendered(slider, 1, {0, 0, 206, 19})); };
        QVERIFY(text().isEmpty());
        slider.setAttribute(Qt::WA_UnderMouse);
        int width = 0; // of "0%", "39%" and "100%"
        for (const auto& [value, percent, least, most] :
            {std::tuple(0, 0, 0, 30), {100, 39, 65, 100}, {255, 100, 165, 205}}) {
            QCOMPARE(percentOf(value, 0, 255), percent);
            slider.setValue(value);
            QVERIFY(text().left() >= least && text().right() <= most && text().width() > width);
            width = text().width();
            const int left = 3 + QStyle::sliderPositionFromValue(0, 255, value, 185);
            for (const auto& [point, grabbed] : {std::pair(QPoint(left, 27), true), {{left + 14, 41}, true},
                     {{left - 1, 27}, false}, {{left + 15, 41}, false}}) {
                slider.setValue(value);
                QTest::mousePress(&slider, Qt::LeftButton, {}, point);
                QCOMPARE(slider.isSliderDown(), grabbed);
                QTest::mouseRelease(&slider, Qt::LeftButton, {}, point);
            }
        }
        slider.setEnabled(false);
        QVERIFY(text().isEmpty());
    }

    void starsAreSmoothAndMirroredWithTheirWords() {
        std::array<QImage, 2> stars;
        for (const auto direction : {Qt::RightToLeft, Qt::LeftToRight}) {
            QApplication::setLayoutDirection(direction);
            const SettingsWindow settings;
            auto& view = settings.control<QLabel>("QualityImage");
            stars.at(direction) = rendered(view);
            const int ahead = settings.control("ButtonHigh").x() - settings.control("ButtonLow").x();
            QCOMPARE(ahead > 0, direction == Qt::LeftToRight);
            view.setPixmap(QPixmap(QStringLiteral(":/images/img_starBest@2x.png")));
            const auto shades = counted(rendered(view, 1.5, {0, 0, view.height(), view.height()})).size();
            QVERIFY2(shades > 150, "without smoothing there are about 100");
        }
        QVERIFY(stars[0] != stars[1]);
        QCOMPARE(stars[0].transformed(QTransform::fromScale(-1, 1)), stars[1]);
    }

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
            const AttributedString title = withoutMnemonicMark(made, true);
            QCOMPARE(title.string, shown);
            QCOMPARE(title.font.pixelSize(), 14);
            QCOMPARE(colorsOf(title), colors);
            QCOMPARE(colorsOf(withoutMnemonicMark(made, false)), QString(colors).toLower());
        }
    }

    void radioButtonDrawsItsTitle() {
        AttributedRadioButton button;
        button.resize(100, 30);
        QVERIFY(counted(rendered(button)).size() > 1);      // drawn without a title as well
        const auto draw = [&button](const QString& title) { // pixels in the title's colour, and in another one
            AttributedString large = createAttributedString(title, Qt::red, {}, {});
            large.font.setPixelSize(18);
            button.setAttributedTitle(large);
            std::pair<int, int> pixels;
            for (const auto [color, count] : counted(rendered(button, 1, {20, 0, 80, 30})).asKeyValueRange())
                (qBlue(color) > 50 ? pixels.second : pixels.first) += qRed(color) > 50 ? count : 0;
            return pixels;
        };
        const int plain = draw("Off").first;
        QCOMPARE(draw("Off"), std::pair(plain, 0)); // the style did not draw the title
        QVERIFY(draw("&Off").first > plain);        // by its underline
        QCOMPARE(button.text(), "&Off");            // for the mnemonic
        QCOMPARE(button.font().pixelSize(), 18);
        for (const bool enabled : {true, false}) {
            button.setEnabled(enabled);
            button.setAttribute(Qt::WA_UnderMouse, enabled);
            const auto [reds, others] = draw("Off");
            QVERIFY(reds == 0 && others > 0); // white or grey
        }
    }

    void popUpStylesItsTitles() {
        CustomPopUpButton popUp(nullptr);
        popUp.resize(160, 28);
        CustomPopUpButton::Line(nullptr, 0, 0, 1, 1); // draws nothing
        popUp.addItemsWithTitles({QString(20, u'M'), "Two"});
        const QColor light = QColor::fromRgbF(1, 1, 1, 0.8F);
        popUp.selectItemAtIndex(0);
        const auto titleColor = [&popUp] { return popUp.attributedTitle(1).colorAt(0); };
        popUp.didDecode();
        QCOMPARE(titleColor(), Qt::black);
        popUp.addItemsWithTitles({}); // adds nothing, styles all
        QCOMPARE(titleColor(), light);
        popUp.didDecode();
        popUp.setItemStyles(7);
        QCOMPARE(titleColor(), light);
        for (const auto& [enabled, least, most] : {std::tuple(true, 170, 204), {false, 90, 115}}) {
            popUp.setEnabled(enabled);
            const QImage face = rendered(popUp, 1, {5, 5, 130, 18});
            const QRect title = inked(face).translated(5, 5);
            QVERIFY(title.left() >= 12 && title.left() < 15);
            QVERIFY(title.right() > 112 && title.right() < 132); // elided before the divider
            QVERIFY2(std::abs(title.center().y() - 13) <= 1, "by the font's rounding");
            const auto shades = counted(face).keys();
            const int brightest = qGray(*std::ranges::max_element(shades, {}, [](QRgb color) { return qGray(color); }));
            QVERIFY(brightest >= least && brightest <= most);
        }
    }
};

QTEST_MAIN(ControlsTest)
#include "ControlsTest.moc"
