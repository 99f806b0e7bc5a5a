// Owns misplaced drawing: a part of a control drawn or grabbed elsewhere than its geometry says, or a title in wrong
// colours.

#include "CustomSliderCell.h"
#include "PopUpGeometry.h"
#include "WindowTest.h"

namespace {

/// Drawn parts and the area where a knob is grabbed must not grow with the fonts.
const bool kOnlyFontsAreLarge = qputenv("QT_FONT_DPI", "144") && qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");

constexpr int kWidth = 206; // of each slider, whose bar is 200 wide
constexpr int kScale = 4;
constexpr QRect kValueBand(0, 0, kWidth, 19);
constexpr QRect kTickBand(0, 19, kWidth, 6);
constexpr QRect kTrackBand(0, 26, kWidth, 17);

using IsPart = bool (*)(QColor);

bool isRed(QColor color) {
    return color.red() > 150 && color.green() < 130;
}

bool isLight(QColor color) {
    return qGray(color.rgb()) > 100 && color.saturation() < 60;
}

/// The bounds of an area's pixels of a colour, in logical pixels.
QRectF boundsOf(const QWidget& control, QRect area, IsPart isPart) {
    const QImage image = rendered(control, kScale, area);
    QRegion found;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (isPart(image.pixelColor(x, y))) found += QRect(x, y, 1, 1);
    const QRectF bounds = found.boundingRect();
    return {QPointF(area.topLeft()) + bounds.topLeft() / kScale, bounds.size() / kScale};
}

bool isClose(const QRectF& one, const QRectF& other) {
    const QMarginsF slack(0.5, 0.5, 0.5, 0.5);
    return (one + slack).contains(other) && (other + slack).contains(one);
}

struct Slider : CustomSliderCell {
    explicit Slider(int value) : CustomSliderCell(nullptr) {
        setFixedSize(kWidth, 48);
        setRange(0, 255);
        setValue(value);
    }
    [[nodiscard]] QRect knob() const {
        return knobRect(QStyle::sliderPositionFromValue(0, 255, value(), knobDistance(kWidth)));
    }
};

/// The code units of a colour, and "." for the others.
QString unitsOf(const AttributedString& title, QColor color) {
    QString units;
    for (qsizetype i = 0; i < title.string.size(); ++i) units += title.colorAt(i) == color ? title.string[i] : u'.';
    return units;
}

QString underlinedIn(const AttributedString& title) {
    for (const QTextLayout::FormatRange& range : title.formats)
        if (range.format.fontUnderline()) return title.string.mid(range.start, range.length);
    return {};
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

    void ticksFitTheBar_data() {
        QTest::addColumn<double>("width");
        QTest::addColumn<TickSpacing>("spacing");
        QTest::addColumn<int>("count");
        row("twentieths", 200.0, TickSpacing::Twentieth, 21);
        row("quarters", 200.0, TickSpacing::Quarter, 5);
        row("a bar that has not been drawn", 0.0, TickSpacing::Twentieth, 0);
        row("the first would be at the end", 20.0 / 1.9, TickSpacing::Quarter, 0);
        row("the second would be left of the first", 10.6, TickSpacing::Twentieth, 1);
        row("the second would be on the first", 20.0 / 1.35 + 1e-12, TickSpacing::Quarter, 1);
    }
    void ticksFitTheBar() {
        QFETCH(const double, width);
        QFETCH(const TickSpacing, spacing);
        QFETCH(const int, count);
        const std::vector<double> ticks = tickPositions(width, 20, spacing);
        QCOMPARE(int(ticks.size()), count);
        if (count > 0) QVERIFY(std::abs(ticks.front() - 10.526316) < 1e-6);
        if (count > 1) QVERIFY(std::abs(ticks.back() - 195.711501) < 1e-6);
    }

    // A screenshot shows colours, radii and shades.
    void partsAreDrawnWhereTheGeometrySays() {
        Slider slider(128);
        const std::vector<double> ticks = tickPositions(200, 20, TickSpacing::Twentieth);
        const QRectF allTicks(ticks.front(), kTickTop, ticks.back() - ticks.front(), kTickBottom - kTickTop);
        QVERIFY(isClose(boundsOf(slider, kTickBand, isLight), allTicks));
        QVERIFY(isClose(boundsOf(slider, kTrackBand, isLight), trackRect(barRect(kWidth))));
        const SettingsWindow settings;
        auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
        QVERIFY(isClose(boundsOf(popUp, popUp.rect(), isRed), {0, 0, kPopUpWidth, kPopUpHeight}));
        QVERIFY(isClose(boundsOf(popUp, {130, 2, 12, 24}, isRed), {kDividerX - 0.5, 2, 1, 24}));
        CustomPopUpButton::Line(nullptr, 0, 0, 1, 1); // draws nothing
    }

    void theKnobIsGrabbedWhereItIsDrawn_data() {
        QTest::addColumn<int>("value");
        row("at the left end", 0);
        row("between the ends", 100);
        row("at the right end", 255);
    }
    void theKnobIsGrabbedWhereItIsDrawn() {
        QFETCH(const int, value);
        Slider slider(value);
        const QRect knob = slider.knob();
        QVERIFY(isClose(boundsOf(slider, kTrackBand, isRed), QRectF(knob).adjusted(2, 2, -2, -2))); // in its outline
        const auto grabs = [&](QPoint point) {
            slider.setValue(value);
            QTest::mousePress(&slider, Qt::LeftButton, {}, point);
            const bool isGrabbed = slider.isSliderDown();
            QTest::mouseRelease(&slider, Qt::LeftButton, {}, point);
            return isGrabbed;
        };
        QVERIFY(grabs(knob.topLeft()));
        QVERIFY(grabs(knob.bottomRight()));
        QVERIFY(!grabs(knob.topLeft() - QPoint(1, 0)));
        QVERIFY(!grabs(knob.bottomRight() + QPoint(1, 0)));
    }

    void theValueIsShownUnderThePointer() {
        Slider slider(255);
        QVERIFY(boundsOf(slider, kValueBand, isLight).isEmpty());
        slider.setAttribute(Qt::WA_UnderMouse);
        const QRectF text = boundsOf(slider, kValueBand, isLight);
        QVERIFY(text.left() > 150 && text.right() < kWidth); // whole, although the knob is at the end
        slider.setEnabled(false);
        QVERIFY(boundsOf(slider, kValueBand, isLight).isEmpty());
        QCOMPARE(percentOf(100, 0, 255), 39);
    }

    void titlesAreWhiteAndRedInPart_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("part");
        QTest::addColumn<QString>("white");
        QTest::addColumn<QString>("red");
        row("two occurrences", "8m 8M 8M", "8M", "8m .. 8M", "...8M...");
        row("no occurrence", "High", "Low", "High", "....");
        row("an empty part", "High", "", "High", "....");
        row("a surrogate pair", "\U0001F3A5ab", "x", "\U0001F3A5a.", "....");
        row("a combining accent", "e\u0301ab", "x", "e\u0301a.", "....");
    }
    void titlesAreWhiteAndRedInPart() {
        QFETCH(const QString, text);
        QFETCH(const QString, part);
        const AttributedString title = createAttributedString(text, Qt::white, part, Qt::red);
        QTEST(unitsOf(title, Qt::white), "white");
        QTEST(unitsOf(title, Qt::red), "red");
        QCOMPARE(title.font.pixelSize(), 14);
    }

    void mnemonicsAreUnderlined_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("underlined");
        row("a mark", "O&ff", "Off", "f");
        row("a mark at the end", "On&", "On&", "");
        row("a doubled mark", "O&&n", "O&n", "");
        row("a doubled mark before a mnemonic", "&&&On", "&On", "O");
    }
    void mnemonicsAreUnderlined() {
        QFETCH(const QString, text);
        const AttributedString title = createAttributedString(text, Qt::white, "&f", Qt::red);
        QTEST(withoutMnemonicMark(title, true).string, "shown");
        QTEST(underlinedIn(withoutMnemonicMark(title, true)), "underlined");
        QCOMPARE(underlinedIn(withoutMnemonicMark(title, false)), "");
    }
};

QTEST_MAIN(ControlsTest)
#include "ControlsTest.moc"
