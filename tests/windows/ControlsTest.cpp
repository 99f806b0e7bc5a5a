// What the drawn controls look like, as numbers: no picture of what the toolkit draws is compared.

#include "ApplicationMain.h"
#include "AttributedRadioButton.h"
#include "CustomSliderCell.h"
#include "ImageViews.h"
#include "OpenWindow.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QSignalSpy>

namespace {

constexpr QRgb kBlack = 0xFF000000;
const QColor kLight = QColor::fromRgbF(1, 1, 1, 0.8F);

QImage blank(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(kBlack);
    return image;
}

QImage rendered(QWidget& control) {
    QImage image = blank(control.size());
    control.render(&image, {}, {}, {});
    return image;
}

QImage rendered(const QWidget& control, double scale) {
    QWidget& window = *control.window();
    QImage image((QSizeF(control.size()) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    window.render(&image, {}, QRect(control.mapTo(&window, QPoint()), control.size()));
    return image;
}

constexpr QRgb kWhite = 0xFFFFFFFF;
constexpr QRgb kCard = 0x141619;
constexpr QRgb kInk = 0x0C0D10;
constexpr QRgb kRed = 0xBF2626;
constexpr QRgb kTick = 0x7D7D7D; // thinner than a pixel, it is never quite white
constexpr int kThin = 60;

enum class State : unsigned char { Plain, Focused, Disabled };

/// What is seen at some points of a control. Its numbers are logical pixels.
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
    {"ring at the left end", kAtMin, State::Focused, kWhite,
        {{0.5, 34.5}, {1.5, 34.5}, {19.5, 34.5}, {10.5, 24.5}, {10.5, 25.5}, {10.5, 43.5}, {10.5, 44.5}}},
    {"ring at the right end", kAtMax, State::Focused, kWhite,
        {{204.5, 34.5}, {205.5, 34.5}, {185.5, 34.5}, {186.5, 34.5}, {193.5, 24.5}, {193.5, 44.5}}},
    {"within the ring", kAtMax, State::Focused, kCard, {{187.5, 34.5}, {203.5, 34.5}, {195.5, 26.5}, {195.5, 42.5}}},
    {"round the ring", kAtMax, State::Focused, kCard, {{193.5, 45.5}, {192.5, 23.5}}},
    {"border", kPopUp, State::Plain, kRed, {{0.5, 14.5}, {159.5, 14.5}, {80.5, 0.5}, {80.5, 27.5}}},
    {"divider", kPopUp, State::Plain, kRed, {{139.2, 1.5}, {139.2, 26.5}}},
    {"chevrons", kPopUp, State::Plain, kRed, {{145.75, 8}, {149.75, 7.6}, {145.75, 16.9}, {149.75, 17}}, 2 * kThin},
    {"face", kPopUp, State::Plain, kBlack,
        {{1.5, 14.5}, {158.5, 14.5}, {80.5, 1.5}, {80.5, 26.5}, {137.5, 14.5}, {140.5, 14.5}, {147.5, 12.5},
            {147.5, 4.5}, {147.5, 20.5}, {142.5, 10.5}, {153.5, 10.5}}},
    {"focus frame", kPopUp, State::Focused, kWhite,
        {{2.5, 14.5}, {3.5, 14.5}, {135.5, 14.5}, {136.5, 14.5}, {80.5, 2.5}, {80.5, 25.5}}},
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

bool differs(QRgb one, QRgb other, int slack) {
    const QColor a(one);
    const QColor b(other);
    return std::abs(a.red() - b.red()) > slack || std::abs(a.green() - b.green()) > slack
        || std::abs(a.blue() - b.blue()) > slack;
}

/// A background that counts the moves that it starts.
class MovedView : public MyImageView {
public:
    MovedView() : MyImageView(nullptr) {}
    void startMove() override { ++moves; }
    int moves = 0;
};

void sendMouse(QWidget& to, QEvent::Type type, QPointF place, Qt::MouseButton button) {
    const bool moves = type == QEvent::MouseMove;
    QMouseEvent event(type, place, to.mapToGlobal(place), moves ? Qt::NoButton : button,
        type == QEvent::MouseButtonRelease ? Qt::NoButton : button, {});
    QCoreApplication::sendEvent(&to, &event);
}

/// A letter per code unit: w white, r red, - none.
QString colorsOf(const AttributedString& text) {
    QString colors;
    for (qsizetype i = 0; i < text.string.size(); ++i) {
        const QColor color = text.colorAt(i);
        colors += color == Qt::white ? u'w' : color == Qt::red ? u'r' : color.isValid() ? u'?' : u'-';
    }
    return colors;
}

} // namespace

class ControlsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
    void init() { TestHost::reset(); }

    void ticks() {
        using enum TickSpacing;
        using Row = std::tuple<double, TickSpacing, std::size_t, double>; // width, spacing; ticks, the last one
        for (const auto& [width, spacing, count, last] :
            {Row{200, Twentieth, 21, 195.7115}, {200, Quarter, 5, 195.7115}, {0, Twentieth, 0, 0}, // not drawn yet
                {10.5, Quarter, 0, 0},                                      // too narrow for the first
                {10.6, Twentieth, 1, 10.526316},                            // the step is negative
                {20.0 / 1.35, Quarter, 1, 10.526316},                       // the step is zero
                {std::nextafter(20.0 / 1.35, 99), Twentieth, 1, 10.526316}, // a step that changes nothing
                {20.0 / 1.35 + 1e-12, Quarter, 1, 10.526316},               // one that hardly does
                {kKnobAllowance / 1.9, Quarter, 0, 0},                      // the first would be at the end
                {16, Quarter, 19, 15.859649}}) {
            const auto positions = tickPositions(width, kKnobAllowance, spacing);
            QCOMPARE(positions.size(), count);
            QVERIFY(positions.empty() || std::abs(positions.front() - 10.526316) < 1e-6);
            QVERIFY2(positions.empty() || std::abs(positions.back() - last) < 1e-5, qPrintable(QString::number(width)));
        }
    }

    void ticksFollowTheTrackDrawnLast() {
        CustomSliderCell2 slider(nullptr);
        QImage image = blank({206, 48});
        QPainter painter(&image);
        slider.drawTickMarks(painter);
        QCOMPARE(image, blank({206, 48})); // none before
        slider.drawBarInside(painter, QRectF(3, 33, 200, 99), true);
        QCOMPARE(slider.g_width(), 200.0);
        QCOMPARE(image.pixel(100, 36), kBlack);       // 3 high, whatever the rectangle's height
        CustomPopUpButton::Line(nullptr, 0, 0, 1, 1); // no context, nothing to draw in
    }

    void whatIsOursIsDrawnByItsNumbers_data() {
        QTest::addColumn<double>("scale");
        for (const double scale : {1.0, 2.0}) QTest::addRow("%g", scale) << scale;
    }
    void whatIsOursIsDrawnByItsNumbers() {
        QFETCH(double, scale);
        const SettingsWindow settings;
        auto& popUp = settings.control<CustomPopUpButton>(kPopUp);
        for (const auto& [name, value] : {std::pair(kAtMin, 0), {kAtMax, 255}, {kQuarters, 255}}) {
            auto& slider = settings.control<DrawnSlider>(name);
            const QSignalBlocker shown(slider);
            slider.setValue(value);
            slider.setFixedSize(206, 48);
        }
        popUp.selectItemAtIndex(1);
        settings.control("HdcpOnButton").setFixedSize(100, 30);
        settings.control("HdcpOffButton").setFixedSize(100, 30);
        for (const Seen& row : kSeen) {
            if (!row.control) popUp.showPopup();
            QWidget& control = row.control ? settings.control(row.control) : *popUp.view();
            settings.control(row.state == State::Focused ? row.control : "QuitButton").setFocus();
            control.setEnabled(row.state != State::Disabled);
            const QImage image = rendered(control, scale);
            for (const QPointF point : row.points) {
                const QRgb color = image.pixel((point * scale - QPointF(0.5, 0.5)).toPoint());
                QVERIFY2(!differs(color, row.color, row.slack),
                    qPrintable(QStringLiteral("%1 at %2, %3: %4")
                                   .arg(row.part)
                                   .arg(point.x())
                                   .arg(point.y())
                                   .arg(QColor(color).name())));
            }
            control.setEnabled(true);
        }
    }

    void linesAreSharpAtEveryScale() {
        const SettingsWindow settings;
        settings.control("QuitButton").setFocus();
        for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0}) {
            const QImage face = rendered(settings.control(kPopUp), scale);
            int red = 0;
            for (int x = 0; x < face.width(); ++x) {
                const QRgb color = face.pixel(x, qRound(24 * scale)); // below title and chevrons
                QVERIFY2(color == (0xFF000000 | kRed) || color == kBlack, qPrintable(QColor(color).name()));
                red += color == kBlack ? 0 : 1;
            }
            QCOMPARE(red, 3 * qRound(scale)); // both sides and the divider
        }
    }

    void valueIsShownOverTheKnob() {
        for (const auto& [value, left] : {std::tuple(0, 0.0), {128, 87.5}, {255, 176.0}}) {
            const QRect knob = knobRect(knobDistance(206) * value / 255);
            QCOMPARE(valueRect(knob, 206, 30), QRectF(left, 2, 30, 16));
        }
        CustomSliderCell slider(nullptr);
        const QImage without = rendered(slider);
        slider.setAttribute(Qt::WA_UnderMouse);
        QVERIFY(rendered(slider) != without);
    }

    void allOfTheKnobCanBeGrabbed() {
        CustomSliderCell slider(nullptr);
        slider.setOrientation(Qt::Horizontal);
        slider.resize(206, 48);
        slider.setRange(0, 255);
        for (const int value : {0, 100, 255}) {
            const QRect knob = knobRect(QStyle::sliderPositionFromValue(0, 255, value, knobDistance(206)));
            for (const auto& [point, grabbed] : {std::pair(knob.topLeft(), true), {knob.bottomRight(), true},
                     {knob.topLeft() - QPoint(1, 0), false}, {knob.bottomRight() + QPoint(1, 0), false}}) {
                slider.setValue(value);
                QTest::mousePress(&slider, Qt::LeftButton, {}, point);
                QCOMPARE(slider.isSliderDown(), grabbed);
                QTest::mouseRelease(&slider, Qt::LeftButton, {}, point);
            }
        }
    }

    void wheelAddsUp_data() {
        QTest::addColumn<QList<QPoint>>("angles");
        QTest::addColumn<QPoint>("pixels");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("change");
        QTest::addColumn<int>("actions");
        const auto times = [](int count, QPoint angle) { return QList<QPoint>(count, angle); };
        QTest::newRow("notch") << times(1, {0, 120}) << QPoint() << 0 << 3 << 1;
        QTest::newRow("notches") << times(3, {0, -120}) << QPoint() << 0 << -9 << 3;
        QTest::newRow("touchpad") << times(15, {0, 8}) << QPoint(0, 3) << 0 << 3 << 3;
        QTest::newRow("touchpad down") << times(16, {0, -15}) << QPoint() << 0 << -6 << 6;
        QTest::newRow("up and down") << times(4, {0, 8}) + times(9, {0, -8}) << QPoint() << 0 << -1 << 1;
        QTest::newRow("pixels only") << times(10, {}) << QPoint(0, 2) << 0 << 1 << 1;
        QTest::newRow("to the right") << times(1, {-120, 0}) << QPoint() << 0 << 3 << 1;
        QTest::newRow("by pages") << times(2, {0, 60}) << QPoint() << int{Qt::ControlModifier} << 16 << 2;
    }
    void wheelAddsUp() {
        QFETCH(QList<QPoint>, angles);
        QFETCH(QPoint, pixels);
        QFETCH(int, modifiers);
        CustomSliderCell slider(nullptr);
        slider.setRange(0, 255);
        slider.setPageStep(16);
        slider.setValue(100);
        const QSignalSpy actions(&slider, &QSlider::valueChanged);
        int moved = 0; // by the device, which reports another value after each action
        connect(&slider, &QSlider::valueChanged, [&slider, &moved] {
            const QSignalBlocker shown(slider);
            slider.setValue(slider.value() + 5);
            moved += 5;
        });
        for (const QPoint angle : angles) {
            QWheelEvent wheel(
                {50, 34}, {50, 34}, pixels, angle, {}, Qt::KeyboardModifiers(modifiers), Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(&slider, &wheel);
            QVERIFY(wheel.isAccepted());
        }
        QTEST(slider.value() - moved - 100, "change");
        QTEST(int(actions.size()), "actions");
    }

    void backgroundMovesItsWindowByADrag() {
        MovedView background;
        QFrame card(&background);
        QLabel label(QStringLiteral("text"), &card);
        const int distance = QApplication::startDragDistance();
        for (QWidget* pressed :
            {static_cast<QWidget*>(&background), static_cast<QWidget*>(&card), static_cast<QWidget*>(&label)}) {
            for (const auto& [button, way, moves] :
                {std::tuple(Qt::LeftButton, 0, 0), {Qt::LeftButton, distance - 1, 0}, {Qt::LeftButton, distance, 1},
                    {Qt::RightButton, distance, 0}}) {
                background.moves = 0;
                sendMouse(*pressed, QEvent::MouseButtonPress, {1, 1}, button);
                for (int times = 0; times < 2; ++times) // the second one must not start another move
                    sendMouse(*pressed, QEvent::MouseMove, {1.0 + way, 1}, button);
                sendMouse(*pressed, QEvent::MouseButtonRelease, {1.0 + way, 1}, button);
                sendMouse(*pressed, QEvent::MouseMove, {99, 99}, Qt::LeftButton); // pressed elsewhere
                QCOMPARE(background.moves, moves);
            }
        }
    }

    void starsAreMirroredWithTheirWords() {
        std::array<QImage, 2> stars;
        for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            QApplication::setLayoutDirection(direction);
            const SettingsWindow settings;
            settings.view().DisplayBitRateImage(ViewController::CBIT_RATE_LOW);
            stars.at(direction) = rendered(settings.control("QualityImage"), 1);
            const int ahead = settings.control("ButtonHigh").x() - settings.control("ButtonLow").x();
            QCOMPARE(ahead > 0, direction == Qt::LeftToRight);
        }
        QApplication::setLayoutDirection(Qt::LeftToRight);
        QVERIFY(stars[0] != stars[1]);
        QCOMPARE(stars[0].transformed(QTransform::fromScale(-1, 1)), stars[1]);
    }

    void popUpDrawsItsTitle() {
        CustomPopUpButton popUp(nullptr);
        popUp.resize(160, 28);
        popUp.didDecode();
        popUp.addItemsWithTitles({"A title that is far too long for the face of the pop-up", "A title"});
        const AttributedString title = popUp.attributedTitle(0);
        QImage titled = blank(popUp.size());
        QPainter painter(&titled);
        drawAttributedString(painter, {12, 0, 120, 28}, title); // elided before the divider
        painter.end();
        QCOMPARE(rendered(popUp).copy(2, 2, 136, 24), titled.copy(2, 2, 136, 24));
    }

    void itemStyles() {
        CustomPopUpButton popUp(nullptr);
        popUp.addItems({QStringLiteral("One"), QString()});
        popUp.didDecode();
        QCOMPARE(popUp.attributedTitle(0).colorAt(2), QColor(Qt::black));
        QCOMPARE(popUp.attributedTitle(0).font.pixelSize(), 14);
        QVERIFY(popUp.attributedTitle(1).string.isEmpty());
        popUp.addItemsWithTitles({QStringLiteral("Three")});
        for (const int index : {0, 2}) QCOMPARE(popUp.attributedTitle(index).colorAt(0), kLight);
        popUp.setItemStyles(CPOPUP_TEXT_BLACK_COLOR);
        QCOMPARE(popUp.attributedTitle(2).colorAt(0), QColor(Qt::black));
        popUp.addItemsWithTitles({}); // adds nothing, styles all
        QCOMPARE(popUp.count(), 3);
        QCOMPARE(popUp.attributedTitle(2).colorAt(0), kLight);
        popUp.setItemStyles(CPOPUP_TEXT_BLACK_COLOR);
        popUp.setItemStyles(7);
        QCOMPARE(popUp.attributedTitle(0).colorAt(0), kLight);
    }

    void popUpToAssistiveTechnology() {
        CustomPopUpButton popUp(nullptr);
        popUp.didDecode();
        popUp.addItemsWithTitles({"One", "Three"});
        popUp.setCurrentIndex(1);
        popUp.show();
        QAccessibleInterface& heard = *QAccessible::queryAccessibleInterface(&popUp);
        QAccessibleTextInterface& text = *heard.textInterface();
        QCOMPARE(heard.text(QAccessible::Value), "Three");
        QCOMPARE(text.text(1, 4), "hre");
        QCOMPARE(heard.childCount(), 1);
        QCOMPARE(heard.child(0)->object(), popUp.view());
        QVERIFY(heard.state().expandable && heard.state().hasPopup);
        for (const bool opens : {true, false}) {
            heard.actionInterface()->doAction(heard.actionInterface()->actionNames().at(opens ? 0 : 1));
            QCOMPARE(heard.state().expanded, opens);
        }
        popUp.setEnabled(false);
        heard.actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
        QVERIFY(!heard.state().expanded);
    }

    void attributedStrings() {
        using Row = std::tuple<QString, QString, const char*>;
        for (const auto& [full, sub, colors] : {Row{"8m 8M 8M", "8M", "wwwrrwww"}, // the first occurrence
                 {"High", "Low", "wwww"}, {"", "", ""}, {"ab", "", "ww"},
                 {QStringLiteral("\U0001F3A5ab"), "Q", "www-"},                     // a surrogate pair
                 {QStringLiteral("e\u0301a"), "a", "wwr"},                          // a combining accent
                 {QStringLiteral("\U0001F468\u200D\U0001F469x"), "Q", "ww----"}}) { // one family
            const AttributedString text = createAttributedString(full, Qt::white, sub, Qt::red);
            QCOMPARE(text.string, full);
            QCOMPARE(text.font, titleFont());
            QCOMPARE(colorsOf(text), colors);
        }
        QImage image = blank({40, 20});
        QPainter painter(&image);
        drawAttributedString(painter, {0, 0, 40, 20}, createAttributedString("MW", Qt::green, "MW", Qt::red));
        painter.end();
        int red = 0;
        for (int x = 0; x < 40; ++x) {
            red = std::max(red, qRed(image.pixel(x, 10)));
            QCOMPARE(qGreen(image.pixel(x, 10)), 0);
        }
        QVERIFY(red > 200);
    }

    void mnemonicsKeepColours() {
        const auto shownWithRed = [](const char* red) {
            return withMnemonic(createAttributedString("O&ff", Qt::white, red, Qt::red), true);
        };
        QCOMPARE(colorsOf(shownWithRed("O")), "rww");
        QCOMPARE(colorsOf(shownWithRed("&f")), "wrw");
        const AttributedString shown = shownWithRed("ff");
        QCOMPARE(shown.string, "Off");
        QCOMPARE(colorsOf(shown), "wrr");
        QVERIFY(shown.colors.last().format.fontUnderline());
        QCOMPARE(std::pair(shown.colors.last().start, shown.colors.last().length), std::pair(1, 1));
        for (const auto& [text, plain, underlined] : {std::tuple("&On", "On", true), {"On", "On", false},
                 {"On&", "On&", false}, {"O&&n", "O&n", false}, {"&&&On", "&On", true}}) {
            const AttributedString title = withMnemonic(createAttributedString(text, Qt::white, {}, {}), true);
            QCOMPARE(title.string, plain);
            QCOMPARE(title.colors.last().format.fontUnderline(), underlined);
        }
    }

    void radioButtonDrawsItsTitle() {
        AttributedRadioButton button;
        button.resize(100, 30);
        QVERIFY(rendered(button) != blank(button.size())); // also without a title
        const auto redness = [&button](const QString& title) {
            button.setAttributedTitle(createAttributedString(title, Qt::red, {}, {}));
            const QImage image = rendered(button);
            int sum = 0;
            for (int i = 0; i < 3000; ++i)
                sum += qRed(image.pixel(i % 100, i / 100)) - qBlue(image.pixel(i % 100, i / 100));
            return sum;
        };
        QVERIFY(redness("O&ff") > redness("Off")); // by its underline
        button.setAttributedTitle(createAttributedString("Off", Qt::transparent, {}, {}));
        const QImage untitled = rendered(button);
        (void)redness("   ");
        QCOMPARE(untitled, rendered(button)); // the style has no title to draw
        button.setAttribute(Qt::WA_UnderMouse);
        QVERIFY(redness("Off") < 0); // the ring is bluish
        button.setAttribute(Qt::WA_UnderMouse, false);
        button.setEnabled(false);
        QVERIFY(redness("Off") < 0);
    }

    void unsupportedInitialisersStop_data() {
        QTest::addColumn<int>("row");
        for (int row = 0; row < 6; ++row) QTest::addRow("%d", row) << row;
    }
    void unsupportedInitialisersStop() {
        const std::vector<std::pair<QString, std::function<void()>>> initialisers{
            {"CustomSliderCell: init(textCell:)", [] { const CustomSliderCell c{QString()}; }},
            {"CustomSliderCell: init(imageCell:)", [] { const CustomSliderCell c{QImage()}; }},
            {"CustomSliderCell2: init(textCell:)", [] { const CustomSliderCell2 c{QString()}; }},
            {"CustomSliderCell2: init(imageCell:)", [] { const CustomSliderCell2 c{QImage()}; }},
            {"CustomPopUpButton: init(frame:)", [] { const CustomPopUpButton c{QRect()}; }},
            {"CustomPopUpButton: init(frame:pullsDown:)", [] { const CustomPopUpButton c(QRect(), true); }}};
        QFETCH(int, row);
        const auto& [named, initialise] = initialisers[static_cast<std::size_t>(row)];
        const ChildEnd end = runInChild(initialise);
        QVERIFY(end.aborted);
        const QString line = QString(named).replace(": ", ": unsupported initialiser ");
        QCOMPARE(end.journal, std::vector{"log Fatal: " + line.toStdString()});
    }
};

QTEST_MAIN(ControlsTest)
#include "ControlsTest.moc"
