// Readability: no text is cut in any language, mnemonics differ, contrast is sufficient as drawn, and the focus is
// visible.

#include "WindowTest.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kReadable = 4.5;   ///< WCAG 2.1 AA, 1.4.3: text
constexpr double kNoticeable = 3.0; ///< 1.4.11: parts needed to recognise a control
constexpr int kEnlarged = 4;        ///< scale at which strokes have their full colour

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

/// The highest contrast of a colour with the most frequent one.
double contrastWithin(const QImage& image) {
    const QHash<QRgb, int> counts = counted(image);
    QRgb ground = 0;
    for (const auto [color, count] : counts.asKeyValueRange())
        if (count > counts.value(ground)) ground = color;
    double best = 1;
    for (const auto [color, count] : counts.asKeyValueRange())
        if (count > 2) // a stroke, not a stray pixel
            best = std::max(best, contrast(ground, color));
    return best;
}

/// Whether all of a control's text is visible.
bool isWhole(const QWidget& control) {
    QSize needed = control.sizeHint();
    if (const auto* label = qobject_cast<const QLabel*>(&control); label && label->wordWrap())
        needed = {label->minimumSizeHint().width(), label->heightForWidth(label->width())}; // width of the longest word
    return needed.boundedTo(control.size()) == needed;
}

/// The visible controls with a text.
QList<QWidget*> visibleControls(const QWidget& window) {
    QList<QWidget*> controls = window.findChildren<QWidget*>();
    controls.removeIf([](const QWidget* control) {
        const bool isPopUp = qobject_cast<const CustomPopUpButton*>(control) != nullptr;
        return !control->isVisible() || (control->property("text").toString().isEmpty() && !isPopUp);
    });
    return controls;
}

/// A window by the name of its controller, shown in a language.
std::unique_ptr<WindowController> open(const QString& name, const QString& language = "en") {
    QLocale::setDefault(QLocale(language));
    mainBundle::open(*qApp); // the translators installed last are asked first
    static AppDelegate delegate;
    auto controller =
        WindowDescription(QStringLiteral("Main")).instantiateWindowController(name + " Window Controller", &delegate);
    controller->window()->show();
    controller->window()->activateWindow();
    (void)QTest::qWaitForWindowActive(controller->window());
    return controller;
}

/// Checks a part of a window's accessible tree and all below it. Parents and children must know each other; a hit test
/// must find visible parts, and no hidden ones.
// NOLINTNEXTLINE(misc-no-recursion): as deep as the window's controls
void checkTree(QAccessibleInterface& part, QAccessibleInterface& window) {
    const QByteArray name = QDebug::toString(part.role()).toUtf8() + part.text(QAccessible::Name).toUtf8();
    const QPoint center = part.rect().center();
    QAccessibleInterface* hit = &window;
    while (auto* below = hit->childAt(center.x(), center.y())) hit = below;
    QVERIFY2(!hit->state().invisible, name + ": a hidden part is hit");
    const QWidget* menu = QApplication::activePopupWidget();
    const bool isCovered = menu != nullptr && menu->geometry().contains(center) && part.role() != QAccessible::MenuItem;
    if (part.childCount() == 0 && !part.state().invisible && !isCovered) QVERIFY2(hit == &part, name + ": is not hit");
    const bool isOperated = part.state().focusable && part.role() != QAccessible::PopupMenu;
    QVERIFY2(!isOperated || !part.text(QAccessible::Name).isEmpty(), name + ": has no name");
    for (int i = 0; i < part.childCount(); ++i) {
        QAccessibleInterface* child = part.child(i);
        QVERIFY2(child && child->parent() == &part && part.indexOfChild(child) == i, name + ": has another child");
        checkTree(*child, window);
    }
}

/// Checks that no text is cut, that mnemonics differ, that accessible names contain the texts, and the accessible tree,
/// with the menu open too.
void checkWindow(const QWidget& window) {
    QVERIFY2(window.width() <= 1280 && window.height() <= 800, "it is larger than a small screen");
    QSet<QString> mnemonics;
    for (QWidget* control : visibleControls(window)) {
        QString text = control->property("text").toString();
        const QByteArray name = control->objectName().toUtf8() + ' ' + text.toUtf8();
        QVERIFY2(isWhole(*control), name + " is cut");
        const QString key = QKeySequence::mnemonic(text).toString();
        const auto* label = qobject_cast<const QLabel*>(control);
        if (!text.isEmpty() && (label ? label->buddy() != nullptr : control->isEnabled()))
            QVERIFY2(!key.isEmpty() && !mnemonics.contains(key), name + " has no mnemonic or that of another control");
        if (!key.isEmpty()) mnemonics << key;
        if (Qt::mightBeRichText(text)) text = QTextDocumentFragment::fromHtml(text).toPlainText();
        text.remove(QRegularExpression("\\(&.\\)|&")); // the mnemonic's mark
        const QString heard = QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name);
        QVERIFY2(heard.contains(text, Qt::CaseInsensitive), name + " is called " + heard.toUtf8());
    }
    auto& root = *QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&window));
    checkTree(root, root);
    auto* popUp = window.findChild<CustomPopUpButton*>();
    if (!popUp) return;
    for (const QAction* item : popUp->menu()->actions())
        QVERIFY2(QFontMetrics(titleFont()).horizontalAdvance(item->text()) <= 120, qUtf8Printable(item->text()));
    auto& face = *QAccessible::queryAccessibleInterface(popUp);
    for (const bool opens : {true, false}) {
        face.actionInterface()->doAction(face.actionInterface()->actionNames()[opens ? 0 : 1]);
        QVERIFY(face.state().expandable && face.state().expanded == opens);
        checkTree(root, root);
    }
}

const QStringList kWindows{"Settings", "Alert", "About"};

} // namespace

class ReadabilityTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
    void init() { TestHost::reset(); }

    void everyWordIsWhole() {
        QFont font = QApplication::font();
        for (const QString language : {"de", "fr", "es", "ja", "zh_CN", "en"}) {
            for (const double points : {10.5, 16.0}) {
                font.setPointSizeF(points);
                QApplication::setFont(font);
                for (const QString& window : kWindows) {
                    const auto controller = open(window, language);
                    checkWindow(*controller->window());
                    if (QTest::currentTestFailed())
                        QFAIL(qPrintable(QStringLiteral("%1 in %2 at %3 points").arg(window, language).arg(points)));
                }
            }
        }
    }

    void textHasEnoughContrast() {
        for (const QString& window : kWindows) {
            const auto controller = open(window);
            for (const QWidget* control : visibleControls(*controller->window()))
                QVERIFY2(contrastWithin(rendered(*control, kEnlarged)) >= kReadable, qPrintable(control->objectName()));
        }
    }

    // The toolkit draws menus, lists and selections in these colours.
    void paletteHasEnoughContrast() {
        const QPalette palette = QApplication::palette();
        for (const auto& [text, ground] : {std::pair(QPalette::Text, QPalette::Base),
                 {QPalette::HighlightedText, QPalette::Highlight}, {QPalette::ToolTipText, QPalette::ToolTipBase}})
            QVERIFY(contrast(palette.color(text).rgb(), palette.color(ground).rgb()) >= kReadable);
        // Light texts need the dark window, also on a light desktop.
        QCOMPARE(palette.color(QPalette::Window), QColor("#0C0D10"));
    }

    void focusCyclesAndIsVisible() {
        for (const auto& [window, stops] : {std::pair("Settings", 8), {"Alert", 8}, {"About", 4}}) {
            const auto controller = open(window);
            QSet<QWidget*> reached;
            while (!reached.contains(QApplication::focusWidget())) {
                QWidget* focused = QApplication::focusWidget();
                QVERIFY2(focused, "the window has a first focus");
                reached.insert(focused);
                const QImage with = rendered(*focused, kEnlarged);
                focused->clearFocus();
                const QImage without = rendered(*focused, kEnlarged);
                focused->setFocus();
                int seen = 0;
                for (int y = 0; y < with.height(); ++y)
                    for (int x = 0; x < with.width(); ++x)
                        seen += contrast(with.pixel(x, y), without.pixel(x, y)) >= kNoticeable ? 1 : 0;
                // At least a line of 2 px along the shorter side, which a caret is not.
                const int least = 2 * std::min(focused->width(), focused->height());
                QVERIFY2(seen >= least * kEnlarged * kEnlarged, qUtf8Printable(focused->objectName()));
                QTest::keyClick(focused, Qt::Key_Tab);
            }
            QCOMPARE(reached.size(), stops);
        }
    }
};

QTEST_MAIN(ReadabilityTest)
#include "ReadabilityTest.moc"
