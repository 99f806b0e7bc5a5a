// Owns misplaced drawing: a part of a control drawn elsewhere than its geometry says, or a title in wrong
// colours.

#include "CustomSliderCell.h"
#include "PopUpGeometry.h"
#include "WindowTest.h"

namespace {

constexpr int kWidth = 206; // of each slider, whose bar is 200 wide
constexpr int kScale = 4;
constexpr QRect kTickBand(0, 19, kWidth, 6);
constexpr QRect kTrackBand(0, 26, kWidth, 17);

using IsPart = bool (*)(QColor);

bool isRed(QColor color) {
    return color.red() > 150 && color.green() < 130;
}

bool isLight(QColor color) {
    return qGray(color.rgb()) > 100 && color.saturation() < 60;
}

bool isDark(QColor color) {
    return qGray(color.rgb()) < 100;
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
    for (const QChar unit : title.string) units += title.colorAt(units.size()) == color ? unit : u'.';
    return units;
}

} // namespace

class ControlsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
    void init() { TestHost::reset(); }

    void ticksFitTheBar() {
        using enum TickSpacing;
        const std::vector<double> ticks = tickPositions(200, 20, Twentieth);
        QCOMPARE(ticks.size(), 21U);
        QVERIFY(std::abs(ticks.back() - 195.711501) < 1e-6);
        QCOMPARE(tickPositions(200, 20, Quarter).size(), 5U);
        QCOMPARE(tickPositions(0, 20, Twentieth).size(), 0U);  // not drawn yet
        QCOMPARE(tickPositions(12, 20, Twentieth).size(), 1U); // too narrow for a second one
    }

    // A screenshot shows colours, radii and shades.
    void partsAreDrawnWhereTheGeometrySays() {
        Slider slider(100);
        const std::vector<double> ticks = tickPositions(200, 20, TickSpacing::Twentieth);
        const QPointF begin(ticks.front(), kTickTop);
        const QPointF end(ticks.back(), kTickBottom);
        QVERIFY(isClose(boundsOf(slider, kTickBand, isLight), {begin, end}));
        QVERIFY(isClose(boundsOf(slider, kTrackBand, isLight), trackRect(barRect(kWidth))));
        const QRect withinOutline = slider.knob().adjusted(2, 2, -2, -2);
        QVERIFY(isClose(boundsOf(slider, kTrackBand, isRed), withinOutline));
        const SettingsWindow settings;
        auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
        QVERIFY(isClose(boundsOf(popUp, popUp.rect(), isRed), {0, 0, kPopUpWidth, kPopUpHeight}));
        QVERIFY(isClose(boundsOf(popUp, {130, 2, 12, 24}, isRed), {kDividerX - 0.5, 2, 1, 24}));
        CustomPopUpButton::Line(nullptr, 0, 0, 1, 1); // draws nothing
    }

    void theValueIsShownUnderThePointer() {
        Slider slider(100);
        const QRect aboveTheKnob(0, 0, kWidth, 19);
        QVERIFY(boundsOf(slider, aboveTheKnob, isLight).isEmpty());
        slider.setAttribute(Qt::WA_UnderMouse);
        QVERIFY(!boundsOf(slider, aboveTheKnob, isLight).isEmpty());
    }

    void levelsAreShownOnTheFaceAndInTheMenu() {
        const SettingsWindow settings;
        auto& popUp = settings.control<CustomPopUpButton>("PopupRecordQuality");
        QVERIFY(!boundsOf(popUp, {12, 4, 100, 20}, isLight).isEmpty());
        popUp.showMenu();
        QMenu& menu = *popUp.menu();
        const auto row = [&](int index) { return menu.actionGeometry(menu.actions()[index]); };
        QVERIFY(!boundsOf(menu, row(0), isDark).isEmpty());
        const auto ground = [&](int index) { return rendered(menu, 1, row(index)).pixel(1, 1); };
        QCOMPARE(ground(0), ground(2));
        QVERIFY(ground(0) != ground(1)); // the active one
        menu.hide();
    }

    void itemsOfADescriptionAreBlack() {
        CustomPopUpButton popUp(nullptr);
        popUp.setItemTitles({"High"});
        popUp.didDecode();
        QCOMPARE(popUp.attributedTitle(0).colorAt(0), QColor(Qt::black));
    }

    void aMnemonicIsUnderlinedInsteadOfMarked() {
        const AttributedString title = createAttributedString("O&ff", Qt::white, "", Qt::red);
        const AttributedString shown = withoutMnemonicMark(title, true);
        QCOMPARE(shown.string, "Off");
        QCOMPARE(unitsOf(shown, Qt::white), "Off");
        QCOMPARE(shown.formats.last().start, 1);
    }

    void titlesAreWhiteAndRedInPart_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("part");
        QTest::addColumn<QString>("white");
        QTest::addColumn<QString>("red");
        row("two occurrences", "8m 8M 8M", "8M", "8m .. 8M", "...8M...");
        row("an empty part", "High", "", "High", "....");
        row("a surrogate pair", "\U0001F3A5ab", "x", "\U0001F3A5a.", "....");
    }
    void titlesAreWhiteAndRedInPart() {
        QFETCH(const QString, text);
        QFETCH(const QString, part);
        const AttributedString title = createAttributedString(text, Qt::white, part, Qt::red);
        QTEST(unitsOf(title, Qt::white), "white");
        QTEST(unitsOf(title, Qt::red), "red");
        QCOMPARE(title.font.pixelSize(), 14);
    }
};

QTEST_MAIN(ControlsTest)
#include "ControlsTest.moc"
