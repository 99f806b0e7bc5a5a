// That people can read the windows: every word whole in every language, mnemonics that differ, contrast as
// drawn, and a focus that shows. Prints the figures.

#include "ApplicationMain.h"
#include "Bundle.h"
#include "OpenWindow.h"
#include "PopUpGeometry.h"

#include <QAbstractItemView>
#include <QKeySequence>
#include <QScreen>
#include <QTextDocumentFragment>

#include <cmath>

namespace {

constexpr double kReadable = 4.5;   ///< WCAG 2.1 AA, 1.4.3: text
constexpr double kNoticeable = 3.0; ///< 1.4.11: what is needed to recognise a control
constexpr int kEnlarged = 4;

const QStringList kLanguages{"en", "de", "fr", "es", "ja", "zh_CN"};

double luminance(QRgb color) {
    const auto linear = [](int component) {
        const double c = component / 255.0;
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

double contrast(QRgb one, QRgb other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

/// Between what most of the picture shows and what stands out most from it.
double contrastWithin(const QImage& image) {
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) ++counts[image.pixel(x, y)];
    const QRgb ground = std::max_element(counts.keyValueBegin(), counts.keyValueEnd(), [](auto a, auto b) {
        return a.second < b.second;
    })->first;
    double best = 1;
    for (const auto [color, count] : counts.asKeyValueRange()) {
        if (count > 2) // a stroke, not a stray pixel
            best = std::max(best, contrast(ground, color));
    }
    return best;
}

/// As drawn, so large that strokes have their full colour.
QImage imageOf(const QWidget& control, QRect place = {}) {
    QWidget& window = *control.window();
    place = place.isNull() ? control.rect() : place;
    QImage image(place.size() * kEnlarged, QImage::Format_RGB32);
    image.setDevicePixelRatio(kEnlarged);
    window.render(&image, QPoint(), place.translated(control.mapTo(&window, QPoint())));
    return image;
}

QString plain(const QString& text) {
    return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
}

/// What a person would miss of a control's text: empty if nothing.
QString cut(const QLabel& label) {
    if (label.wordWrap()) {
        for (const QString& word : plain(label.text()).split(u' ')) {
            const bool breaks = std::ranges::any_of(word, [](QChar c) { return c.unicode() > 0x2E80; });
            if (!breaks && label.fontMetrics().horizontalAdvance(word) > label.contentsRect().width()) return word;
        }
        return label.heightForWidth(label.width()) > label.height() ? QStringLiteral("a line") : QString();
    }
    const QSize needed = label.sizeHint();
    return needed.width() > label.width() || needed.height() > label.height() ? plain(label.text()) : QString();
}

QString cut(const QWidget& control) {
    if (const auto* label = qobject_cast<const QLabel*>(&control)) return cut(*label);
    if (const auto* button = qobject_cast<const QAbstractButton*>(&control)) {
        const QSize needed = button->sizeHint();
        return needed.width() > button->width() || needed.height() > button->height() ? button->text() : QString();
    }
    if (const auto* popUp = qobject_cast<const CustomPopUpButton*>(&control)) {
        for (int index = 0; index < popUp->count(); ++index) {
            const AttributedString title = popUp->attributedTitle(index);
            if (QFontMetricsF(title.font).horizontalAdvance(title.string) > kTitleRight - kTitleLeft)
                return title.string;
        }
    }
    return {};
}

QList<QWidget*> visibleControls(const QWidget& window) {
    QList<QWidget*> controls = window.findChildren<QWidget*>();
    controls.removeIf([](QWidget* control) { return !control->isVisible(); });
    return controls;
}

/// The controls that have a text or draw one.
QList<QWidget*> textControls(const QWidget& window) {
    QList<QWidget*> controls = visibleControls(window);
    controls.removeIf([](QWidget* control) {
        const auto* label = qobject_cast<QLabel*>(control);
        return label ? label->text().isEmpty()
                     : !qobject_cast<QAbstractButton*>(control) && !qobject_cast<QComboBox*>(control);
    });
    return controls;
}

QString mnemonicText(const QWidget& control) {
    if (const auto* label = qobject_cast<const QLabel*>(&control)) return label->buddy() ? label->text() : QString();
    const auto* button = qobject_cast<const QAbstractButton*>(&control);
    return button && button->isEnabled() ? button->text() : QString();
}

/// A window by the name of its controller, shown.
std::unique_ptr<WindowController> open(const QString& name) {
    static AppDelegate delegate;
    auto controller =
        WindowDescription(QStringLiteral("Main")).instantiateWindowController(name + " Window Controller", &delegate);
    controller->window()->show();
    controller->window()->activateWindow();
    (void)QTest::qWaitForWindowActive(controller->window());
    return controller;
}

void useLanguage(const QString& language) {
    QLocale::setDefault(QLocale(language));
    mainBundle::open(*qApp); // what was installed last is asked first
}

} // namespace

class ReadabilityTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
    void init() { TestHost::reset(); }

    void everyWordIsWhole_data() {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("window");
        QTest::addColumn<double>("points");
        for (const QString& language : kLanguages)
            for (const char* window : {"Settings", "Alert", "About"})
                for (const double points : {10.5, 16.0})
                    QTest::addRow("%s %s %g points", qUtf8Printable(language), window, points)
                        << language << window << points;
    }
    void everyWordIsWhole() {
        QFETCH(QString, language);
        QFETCH(QString, window);
        QFETCH(double, points);
        QFont font = QApplication::font();
        font.setPointSizeF(points);
        QApplication::setFont(font);
        useLanguage(language);
        const auto controller = open(window);
        const QWidget& shown = *controller->window();
        QVERIFY2(shown.width() <= 1280 && shown.height() <= 800,
            qPrintable(QStringLiteral("%1 x %2 is larger than a small screen").arg(shown.width()).arg(shown.height())));
        QMap<QString, QString> mnemonics;
        for (const QWidget* control : textControls(shown)) {
            const QString missing = cut(*control);
            QVERIFY2(missing.isEmpty(), qUtf8Printable(control->objectName() + " cuts " + missing));
            const QRect place(control->mapTo(&shown, QPoint()), control->size());
            QVERIFY2(shown.rect().contains(place), qUtf8Printable(control->objectName() + " leaves the window"));
            for (const QWidget* other : textControls(shown))
                QVERIFY2(other == control || other->parent() != control->parent()
                        || !other->geometry().intersects(control->geometry()),
                    qUtf8Printable(control->objectName() + " covers " + other->objectName()));
            const QString text = mnemonicText(*control);
            if (text.isEmpty()) continue;
            const QString key = QKeySequence::mnemonic(text).toString();
            QVERIFY2(!key.isEmpty(), qUtf8Printable(text + " has no mnemonic"));
            QVERIFY2(!mnemonics.contains(key), qUtf8Printable(text + " clashes with " + mnemonics[key]));
            mnemonics[key] = text;
        }
    }

    void textStandsOutFromItsGround_data() {
        QTest::addColumn<QString>("window");
        for (const char* window : {"Settings", "Alert", "About"}) QTest::newRow(window) << window;
    }
    void textStandsOutFromItsGround() {
        QFETCH(QString, window);
        useLanguage("en");
        const auto controller = open(window);
        for (const QWidget* control : textControls(*controller->window())) {
            const double ratio = contrastWithin(imageOf(*control));
            qInfo("contrast %5.2f %s", ratio, qUtf8Printable(control->objectName()));
            QVERIFY2(ratio >= kReadable, qUtf8Printable(control->objectName()));
        }
    }

    // Menus, lists and selections are drawn by the toolkit in these.
    void paletteStandsOut() {
        const QPalette palette = QApplication::palette();
        for (const auto& [text, ground] : {std::pair(QPalette::Text, QPalette::Base),
                 {QPalette::HighlightedText, QPalette::Highlight}, {QPalette::ToolTipText, QPalette::ToolTipBase}}) {
            const double ratio = contrast(palette.color(text).rgb(), palette.color(ground).rgb());
            qInfo("contrast %5.2f palette's text %d", ratio, text);
            QVERIFY2(ratio >= kReadable, qPrintable(QString::number(text)));
        }
        // A light window of the desktop's behind this program's light texts would be unreadable.
        QCOMPARE(palette.color(QPalette::Window), QColor("#0C0D10"));
    }

    void whatIsOperatedStandsOut() {
        const SettingsWindow settings;
        settings.control("QuitButton").setFocus();
        auto& slider = settings.control<QSlider>("SliderMicrophoneVolume");
        slider.setValue(128);
        struct Part {
            const char* name;
            const char* control;
            QRect place; ///< that and its ground
        };
        const QRect knob(slider.width() / 2 - 1, 25, 3, 8);
        for (const Part& part : {Part{"knob on its card", "SliderMicrophoneVolume", knob},
                 Part{"bar on its card", "SliderMicrophoneVolume", {20, 30, 20, 10}},
                 Part{"pop-up's border on its face", "PopupRecordQuality", {20, 0, 60, 4}},
                 Part{"pop-up's border on its card", "PopupRecordQuality", {20, -4, 60, 5}},
                 Part{"pop-up's chevrons", "PopupRecordQuality", {142, 4, 16, 18}},
                 Part{"radio button's ring", "HdcpOnButton", {0, 0, 26, 26}},
                 Part{"radio button's dot", "HdcpOffButton", {12, 10, 8, 8}}}) {
            const double ratio = contrastWithin(imageOf(settings.control(part.control), part.place));
            qInfo("contrast %5.2f %s", ratio, part.name);
            QVERIFY2(ratio >= kNoticeable, part.name);
        }
    }

    void focusGoesRoundAndShows_data() { textStandsOutFromItsGround_data(); }
    void focusGoesRoundAndShows() {
        QFETCH(QString, window);
        useLanguage("en");
        const auto controller = open(window);
        QWidget& shown = *controller->window();
        QSet<QWidget*> reached;
        while (!reached.contains(QApplication::focusWidget())) {
            QWidget* focused = QApplication::focusWidget();
            QVERIFY2(focused, "the window has a first focus");
            reached.insert(focused);
            const QImage with = imageOf(*focused);
            focused->clearFocus();
            const QImage without = imageOf(*focused);
            focused->setFocus();
            double best = 1;
            int seen = 0;
            for (int y = 0; y < with.height(); ++y) {
                for (int x = 0; x < with.width(); ++x) {
                    const double ratio = contrast(with.pixel(x, y), without.pixel(x, y));
                    best = std::max(best, ratio);
                    seen += ratio >= kNoticeable ? 1 : 0;
                }
            }
            qInfo("contrast %5.2f focus of %s", best, qUtf8Printable(focused->objectName()));
            // A line of 2 px along its shorter side at least; a caret is not enough.
            const int least = 2 * std::min(focused->width(), focused->height());
            QVERIFY2(seen >= least * kEnlarged * kEnlarged, qUtf8Printable(focused->objectName()));
            QTest::keyClick(focused, Qt::Key_Tab);
        }
        for (QWidget* control : visibleControls(shown)) {
            // Of radio buttons the selected one is in the round; arrows reach the other.
            const bool operated = control->isEnabled() && control->focusPolicy() != Qt::NoFocus
                && qobject_cast<QRadioButton*>(control) == nullptr;
            QVERIFY2(!operated || reached.contains(control), qUtf8Printable(control->objectName()));
        }
    }
};

QTEST_MAIN(ReadabilityTest)
#include "ReadabilityTest.moc"
