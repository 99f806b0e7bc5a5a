// What the drawn controls look like: geometry as numbers, and enough pixels to see that it is what is drawn.

#include "ApplicationMain.h"
#include "ChildProcess.h"
#include "Colors.h"
#include "CustomPopUpButton.h"
#include "CustomSliderCell.h"
#include "PopUpGeometry.h"
#include "TestHost.h"

#include <QApplication>
#include <QTest>

namespace {

constexpr QRgb kBlack = 0xFF000000;
constexpr QRgb kWhite = 0xFFFFFFFF;
constexpr QRgb kDarkRed = 0xFFBF2626;
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

/// Colours of a string's code units as one word each.
QStringList colorsOf(const AttributedString& text) {
    QStringList colors;
    for (qsizetype i = 0; i < text.string.size(); ++i) {
        const QColor color = text.colorAt(i);
        colors << (color.isValid() ? color.name(QColor::HexArgb) : QStringLiteral("none"));
    }
    return colors;
}

} // namespace

class ControlsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
    void init() { TestHost::reset(); }

    void ticks_data() {
        QTest::addColumn<double>("width");
        QTest::addColumn<bool>("quarter");
        QTest::addColumn<int>("count");
        QTest::addColumn<double>("last");
        QTest::newRow("twentieths") << 200.0 << false << 21 << 195.711500;
        QTest::newRow("quarters") << 200.0 << true << 5 << 195.711500;
        QTest::newRow("not drawn yet") << 0.0 << false << 0 << 0.0;
        QTest::newRow("too narrow for a tick") << 10.5 << true << 0 << 0.0;
        QTest::newRow("just wide enough, step negative") << 10.6 << false << 1 << 10.526316;
        QTest::newRow("step zero") << 20.0 / 1.35 << true << 1 << 10.526316;
        QTest::newRow("step just positive") << 16.0 << true << 19 << 15.859649;
    }
    void ticks() {
        QFETCH(double, width);
        QFETCH(bool, quarter);
        const auto positions =
            tickPositions(width, kKnobAllowance, quarter ? TickSpacing::Quarter : TickSpacing::Twentieth);
        QTEST(static_cast<int>(positions.size()), "count");
        if (positions.empty())
            return;
        QFETCH(double, last);
        QVERIFY(std::abs(positions.front() - 10.526316) < 1e-6);
        QVERIFY2(std::abs(positions.back() - last) < 1e-5,
                 qPrintable(QString::number(positions.back(), 'f', 8)));
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

        slider.setValue(slider.maximum());
        const QImage drawn = rendered(slider);
        QCOMPARE(slider.g_width(), 200.0);
        for (const int tick : {10, 56, 103, 149}) { // 10.526 and on, 46.296 apart
            for (const int y : {20, 23})
                QVERIFY2(qRed(drawn.pixel(tick, y)) > 40, qPrintable(QString::number(tick)));
            QCOMPARE(drawn.pixel(tick, 19), drawn.pixel(30, 19));
            QCOMPARE(drawn.pixel(tick, 24), drawn.pixel(30, 24));
        }
        QCOMPARE(drawn.pixel(33, 21), drawn.pixel(30, 21)); // where the other kind has a tick
        QCOMPARE(drawn.pixel(100, 34), kWhite);
        CustomSliderCell twentieths(nullptr);
        twentieths.setOrientation(Qt::Horizontal);
        twentieths.resize(206, 48);
        QVERIFY(qRed(rendered(twentieths).pixel(38, 21)) > 40); // 10.526 + 3 x 9.259
    }

    void popUpGeometry() {
        const auto numbers = [](const PopUpLine& line) { return QList{line.Ax, line.Ay, line.Bx, line.By}; };
        QCOMPARE(numbers(kDivider), (QList{139.0, 0.0, 139.0, 28.0}));
        QCOMPARE(numbers(kChevrons[0]), (QList{143.75, 10.0, 147.75, 6.0}));
        QCOMPARE(numbers(kChevrons[1]), (QList{151.75, 10.0, 147.75, 6.0}));
        QCOMPARE(numbers(kChevrons[2]), (QList{143.75, 15.0, 147.75, 19.0}));
        QCOMPARE(numbers(kChevrons[3]), (QList{151.75, 15.0, 147.75, 19.0}));
        CustomPopUpButton::Line(nullptr, 0, 0, 1, 1); // no context, nothing to draw in
    }

    void popUpIsDrawnInItsColours() {
        CustomPopUpButton popUp(nullptr);
        popUp.resize(160, 28);
        popUp.setArrowPosition(CustomPopUpButton::ArrowPosition::None);
        popUp.addItemsWithTitles({QStringLiteral("A title that is far too long for the face of the pop-up")});
        const QImage face = rendered(popUp);
        for (const QPoint edge : {QPoint(0, 0), QPoint(159, 27), QPoint(80, 0), QPoint(0, 14)})
            QCOMPARE(face.pixel(edge), kDarkRed);
        QVERIFY(face.pixel(139, 14) == kDarkRed || face.pixel(138, 14) == kDarkRed);
        QVERIFY(qRed(face.pixel(145, 8)) > 60); // on the upper chevron
        bool titleSeen = false;
        for (int y = 2; y < 26; ++y) {
            for (int x = 132; x < 138; ++x)
                QCOMPARE(face.pixel(x, y), kBlack); // elided before the divider
            titleSeen = titleSeen || qGreen(face.pixel(13, y)) > 100 || qGreen(face.pixel(16, y)) > 100;
        }
        QVERIFY(titleSeen);
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
        for (const int index : {0, 2})
            QCOMPARE(popUp.attributedTitle(index).colorAt(0), kLight);
        popUp.setItemStyles(CPOPUP_TEXT_BLACK_COLOR);
        QCOMPARE(popUp.attributedTitle(2).colorAt(0), QColor(Qt::black));
        popUp.addItemsWithTitles({}); // adds nothing, styles all
        QCOMPARE(popUp.count(), 3);
        QCOMPARE(popUp.attributedTitle(2).colorAt(0), kLight);
        popUp.setItemStyles(CPOPUP_TEXT_BLACK_COLOR);
        popUp.setItemStyles(7);
        QCOMPARE(popUp.attributedTitle(0).colorAt(0), kLight);
    }

    void attributedStrings_data() {
        QTest::addColumn<QString>("full");
        QTest::addColumn<QString>("sub");
        QTest::addColumn<QString>("colors"); // per code unit: w white, r red, - none
        QTest::newRow("first occurrence") << "8m 8M 8M"
                                          << "8M"
                                          << "wwwrrwww";
        QTest::newRow("does not occur") << "High"
                                        << "Low"
                                        << "wwww";
        QTest::newRow("empty") << ""
                               << ""
                               << "";
        QTest::newRow("empty sub-text") << "ab"
                                        << ""
                                        << "ww";
        QTest::newRow("surrogate pair") << u"\U0001F3A5ab"_qs << "Q"
                                        << "www-";
        QTest::newRow("combining accent") << u"e\u0301a"_qs << "a"
                                          << "wwr";
        QTest::newRow("family of one") << u"\U0001F468\u200D\U0001F469x"_qs << "Q"
                                       << "ww----";
    }
    void attributedStrings() {
        QFETCH(QString, full);
        QFETCH(QString, sub);
        QFETCH(QString, colors);
        const AttributedString text = createAttributedString(full, Qt::white, sub, Qt::red);
        QCOMPARE(text.string, full);
        QCOMPARE(text.font, titleFont());
        QString seen;
        for (const QString& color : colorsOf(text))
            seen += color == QStringLiteral("#ffffffff")   ? u'w'
                    : color == QStringLiteral("#ffff0000") ? u'r'
                                                           : u'-';
        QCOMPARE(seen, colors);
    }

    void mnemonicsKeepColours() {
        const AttributedString title =
            createAttributedString(QStringLiteral("O&ff"), Qt::white, QStringLiteral("ff"), Qt::red);
        const AttributedString shown = withMnemonic(title, true);
        QCOMPARE(shown.string, QStringLiteral("Off"));
        QCOMPARE(colorsOf(shown), (QStringList{"#ffffffff", "#ffff0000", "#ffff0000"}));
        QVERIFY(shown.colors.last().format.fontUnderline());
        QCOMPARE(shown.colors.last().start, 1);
    }

    void coloursAreClamped() {
        QCOMPARE(deviceColor(230.0, 230.0, 230.0, 0.8), kLight);
        QCOMPARE(deviceColor(-1.0, 0.15, 2.0, 9.0), QColor::fromRgbF(0, 0.15F, 1, 1));
    }

    void unsupportedInitialisersStop_data() {
        QTest::addColumn<int>("initialiser");
        QTest::addColumn<QString>("line");
        QTest::newRow("1") << 0 << "log Fatal: CustomSliderCell: unsupported initialiser init(textCell:)";
        QTest::newRow("2") << 1 << "log Fatal: CustomSliderCell: unsupported initialiser init(imageCell:)";
        QTest::newRow("3") << 2 << "log Fatal: CustomSliderCell2: unsupported initialiser init(textCell:)";
        QTest::newRow("4") << 3 << "log Fatal: CustomSliderCell2: unsupported initialiser init(imageCell:)";
        QTest::newRow("5") << 4 << "log Fatal: CustomPopUpButton: unsupported initialiser init(frame:)";
        QTest::newRow("6") << 5
                           << "log Fatal: CustomPopUpButton: unsupported initialiser init(frame:pullsDown:)";
    }
    void unsupportedInitialisersStop() {
        QFETCH(int, initialiser);
        QFETCH(QString, line);
        const ChildEnd end = runInChild([initialiser] {
            switch (initialiser) {
            case 0: {
                const CustomSliderCell unsupported{QString()};
                break;
            }
            case 1: {
                const CustomSliderCell unsupported{QImage()};
                break;
            }
            case 2: {
                const CustomSliderCell2 unsupported{QString()};
                break;
            }
            case 3: {
                const CustomSliderCell2 unsupported{QImage()};
                break;
            }
            case 4: {
                const CustomPopUpButton unsupported{QRect()};
                break;
            }
            default: {
                const CustomPopUpButton unsupported{QRect(), true};
                break;
            }
            }
        });
        QVERIFY(end.aborted);
        QCOMPARE(end.journal, std::vector{line.toStdString()});
    }
};

QTEST_MAIN(ControlsTest)
#include "ControlsTest.moc"
