// What the drawn controls look like: geometry as numbers, and enough pixels to see that it is what is drawn.

#include "ApplicationMain.h"
#include "AttributedRadioButton.h"
#include "ChildProcess.h"
#include "Colors.h"
#include "CustomPopUpButton.h"
#include "CustomSliderCell.h"
#include "SimulatedHost.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QTest>

namespace {

constexpr QRgb kBlack = 0xFF000000;
constexpr QRgb kWhite = 0xFFFFFFFF;
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
    void init() { SimulatedHost::reset(); }

    void ticks() {
        using enum TickSpacing;
        using Row = std::tuple<double, TickSpacing, std::size_t, double>; // width, spacing; ticks, the last one
        for (const auto& [width, spacing, count, last] :
            {Row{200, Twentieth, 21, 195.7115}, {200, Quarter, 5, 195.7115}, {0, Twentieth, 0, 0}, // not drawn yet
                {10.5, Quarter, 0, 0},                 // too narrow for the first
                {10.6, Twentieth, 1, 10.526316},       // the step is negative
                {20.0 / 1.35, Quarter, 1, 10.526316},  // the step is zero
                {kKnobAllowance / 1.9, Quarter, 0, 0}, // the first would be at the end
                {16, Quarter, 19, 15.859649}}) {
            const auto positions = tickPositions(width, kKnobAllowance, spacing);
            QCOMPARE(positions.size(), count);
            QVERIFY(positions.empty() || std::abs(positions.front() - 10.526316) < 1e-6);
            QVERIFY2(positions.empty() || std::abs(positions.back() - last) < 1e-5, qPrintable(QString::number(width)));
        }
    }

    void sliderDrawsTrackAndTicks() {
        CustomSliderCell2 slider(nullptr);
        slider.setOrientation(Qt::Horizontal);
        slider.resize(206, 48);
        QImage image = blank(slider.size());
        QPainter painter(&image);
        slider.drawTickMarks(painter);
        QCOMPARE(image, blank(slider.size())); // no ticks before the track has been drawn
        slider.drawBarInside(painter, QRectF(3, 33, 200, 99), true);
        painter.end();
        QCOMPARE(slider.g_width(), 200.0);
        QCOMPARE(image.pixel(100, 32), kBlack);
        for (const int y : {33, 34, 35})
            QCOMPARE(image.pixel(100, y), kWhite); // 3 high, whatever the rectangle's height
        QCOMPARE(image.pixel(100, 36), kBlack);
    }

    // As in the picture beside this file, at 200 %: first with the focus on the second slider and an arrow in the
    // pop-up, then with the focus on the pop-up, then its list, whose titles would stand in colours that its rows
    // do not have here. TAVRO_NEW_PICTURE=1 takes a new one; look at it.
    void controlsAreDrawnAsPictured() {
        QWidget window;
        QPalette grey = window.palette();
        grey.setColor(QPalette::Window, Qt::gray);
        grey.setColor(QPalette::WindowText, Qt::green);
        window.setPalette(grey);
        CustomSliderCell twentieths(&window);
        CustomSliderCell2 quarters(&window);
        CustomPopUpButton popUp(&window);
        for (int row = 0; QSlider * slider : {static_cast<QSlider*>(&twentieths), static_cast<QSlider*>(&quarters)}) {
            slider->setOrientation(Qt::Horizontal);
            slider->setGeometry(0, 60 * row, 206, 48);
            slider->setRange(0, 255);
            slider->setValue(row++ == 0 ? 60 : 255);
        }
        popUp.setGeometry(20, 130, 160, 28);
        popUp.didDecode();
        popUp.addItems({QStringLiteral("Untitled"), QString()});
        window.resize(206, 170);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QImage drawn(412, 820, QImage::Format_RGB32);
        drawn.fill(Qt::gray);
        drawn.setDevicePixelRatio(2);
        quarters.setFocus();
        window.render(&drawn);
        popUp.setFocus();
        popUp.setArrowPosition(CustomPopUpButton::ArrowPosition::None);
        window.render(&drawn, QPoint(0, 170));
        popUp.showPopup();
        popUp.view()->render(&drawn, QPoint(20, 340));
        const QString path = QStringLiteral(TAVRO_PICTURES "/drawn.png");
        if (qEnvironmentVariableIsSet("TAVRO_NEW_PICTURE")) drawn.save(path);
        const QImage pictured = QImage(path).convertToFormat(QImage::Format_RGB888);
        const QImage now = drawn.convertToFormat(QImage::Format_RGB888);
        QCOMPARE(now.size(), pictured.size());
        for (qsizetype i = 0; i < now.sizeInBytes(); ++i)
            QVERIFY2(std::abs(now.constBits()[i] - pictured.constBits()[i]) < 4, qPrintable(QString::number(i / 3)));
        CustomPopUpButton::Line(nullptr, 0, 0, 1, 1); // no context, nothing to draw in
    }

    void popUpDrawsItsTitle() {
        CustomPopUpButton popUp(nullptr);
        popUp.resize(160, 28);
        popUp.setArrowPosition(CustomPopUpButton::ArrowPosition::None);
        popUp.addItemsWithTitles({"A title that is far too long for the face of the pop-up", "A title"});
        const QImage face = rendered(popUp);
        popUp.setCurrentIndex(1);
        QCOMPARE(rendered(popUp).copy(12, 2, 30, 24), face.copy(12, 2, 30, 24)); // elided at its end
        popUp.setCurrentIndex(0);
        QImage title = blank(popUp.size());
        QPainter painter(&title);
        drawAttributedString(painter, {12, 0, 120, 28}, popUp.attributedTitle(0)); // elided before the divider
        painter.end();
        const QRect within(2, 2, 136, 24);
        QCOMPARE(face.copy(within), title.copy(within));
        QCOMPARE(face.copy(133, 2, 5, 24), blank({5, 24}));
        const AttributedString listed = popUp.attributedTitle(0);
        popUp.didDecode();
        popUp.setItemStyles(CPOPUP_TEXT_WHITE_COLOR);
        popUp.showPopup();
        const QImage list = rendered(*popUp.view()->viewport());
        popUp.setItemData(0, {}, Qt::UserRole);
        QImage untitled = rendered(*popUp.view()->viewport());
        painter.begin(&untitled); // with the face's left edge, which lies under the list's border
        drawAttributedString(painter, {11, 0, untitled.width() - 23.0, untitled.height() / 2.0}, listed);
        painter.end();
        QCOMPARE(list, untitled);
        popUp.setEnabled(false);
        QVERIFY(rendered(popUp) != face);
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
        int start = -1;
        int end = -1;
        text.attributes(0, &start, &end);
        QCOMPARE(std::pair(start, end), std::pair(0, 5));
        QCOMPARE(heard.childCount(), 1);
        QCOMPARE(heard.child(0)->object(), popUp.view());
        QVERIFY(!heard.child(1));
        QCOMPARE(heard.indexOfChild(heard.child(0)), 0);
        QCOMPARE(heard.indexOfChild(&heard), -1);
        QVERIFY(heard.state().expandable && heard.state().hasPopup);
        for (const bool opens : {true, false}) {
            heard.actionInterface()->doAction(heard.actionInterface()->actionNames().at(opens ? 0 : 1));
            QCOMPARE(heard.state().expanded, opens);
        }
        popUp.clearFocus();
        heard.actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
        QCOMPARE(popUp.focusWidget(), &popUp);
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
        for (const auto& [text, plain] : {std::pair("&On", "On"), {"On", "On"}, {"On&", "On&"}})
            QCOMPARE(withMnemonic(createAttributedString(text, Qt::white, {}, {}), true).string, plain);
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

    void coloursAreClamped() {
        QCOMPARE(deviceColor(230.0, 230.0, 230.0, 0.8), kLight);
        QCOMPARE(deviceColor(-1.0, 0.15, 2.0, 9.0), QColor::fromRgbF(0, 0.15F, 1, 1));
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
