// Owns unreadable windows: text that is cut in some language, equal mnemonics, wrong accessible names, a focus that is
// not seen.

#include "WindowTest.h"

namespace {

/// Whether all of a control's text is visible.
bool isWhole(const QWidget& control) {
    QSize needed = control.sizeHint();
    const auto* label = qobject_cast<const QLabel*>(&control);
    if (label && label->wordWrap()) {
        const int longestWord = label->minimumSizeHint().width();
        needed = {longestWord, label->heightForWidth(label->width())};
    }
    return needed.boundedTo(control.size()) == needed;
}

/// The visible controls with a text.
QList<QWidget*> visibleControls(const QWidget& window) {
    QList<QWidget*> controls = window.findChildren<QWidget*>();
    controls.removeIf([](const QWidget* control) {
        const bool isPopUp = qobject_cast<const CustomPopUpButton*>(control) != nullptr;
        const bool hasText = isPopUp || !control->property("text").toString().isEmpty();
        return !control->isVisible() || !hasText;
    });
    return controls;
}

/// A window by the name of its controller, shown in a language.
std::unique_ptr<WindowController> open(const QString& name, const QString& language = "en") {
    QLocale::setDefault(QLocale(language));
    mainBundle::open(*qApp); // the translators installed last are asked first
    static AppDelegate delegate;
    const WindowDescription main("Main");
    auto controller = main.instantiateWindowController(name + " Window Controller", &delegate);
    controller->window()->show();
    controller->window()->activateWindow();
    (void)QTest::qWaitForWindowActive(controller->window());
    return controller;
}

/// Checks that parents and children of a window's accessible tree know each other, and that controls have names.
// NOLINTNEXTLINE(misc-no-recursion): as deep as the window's controls
void checkTree(QAccessibleInterface& part) {
    const QString name = part.text(QAccessible::Name);
    const bool isOperated = part.state().focusable && part.role() != QAccessible::PopupMenu;
    QVERIFY2(!isOperated || !name.isEmpty(), qPrintable(QDebug::toString(part.role())));
    for (int i = 0; i < part.childCount(); ++i) {
        QAccessibleInterface* child = part.child(i);
        const bool isOwn = child != nullptr && child->parent() == &part && part.indexOfChild(child) == i;
        QVERIFY2(isOwn, qPrintable(name));
        checkTree(*child);
    }
}

/// The text as a reader sees it, without marks.
QString plain(QString text) {
    if (Qt::mightBeRichText(text)) text = QTextDocumentFragment::fromHtml(text).toPlainText();
    return text.remove(QRegularExpression("\\(&.\\)|&")); // the mnemonic's mark
}

void checkWindow(const QWidget& window) {
    QVERIFY2(window.width() <= 1280 && window.height() <= 800, "it is larger than a small screen");
    QSet<QString> mnemonics;
    for (QWidget* control : visibleControls(window)) {
        const QString text = control->property("text").toString();
        const QByteArray name = control->objectName().toUtf8() + ' ' + text.toUtf8();
        QVERIFY2(isWhole(*control), name + " is cut");
        const QString key = QKeySequence::mnemonic(text).toString();
        const auto* label = qobject_cast<const QLabel*>(control);
        const bool isOperated = label ? label->buddy() != nullptr : control->isEnabled();
        if (isOperated && !text.isEmpty())
            QVERIFY2(!key.isEmpty() && !mnemonics.contains(key), name + " has no mnemonic of its own");
        if (!key.isEmpty()) mnemonics << key;
        auto* accessible = QAccessible::queryAccessibleInterface(control);
        const QString heard = accessible->text(QAccessible::Name);
        QVERIFY2(heard.contains(plain(text), Qt::CaseInsensitive), name + " is called otherwise");
    }
    checkTree(*QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&window)));
    if (auto* popUp = window.findChild<CustomPopUpButton*>())
        for (const QAction* item : popUp->menu()->actions())
            QVERIFY(QFontMetrics(titleFont()).horizontalAdvance(item->text()) <= 120);
}

const QStringList kWindows{"Settings", "Alert", "About"};

} // namespace

class ReadabilityTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
    void init() { TestHost::reset(); }

    void everyWordIsWhole_data() {
        QTest::addColumn<QString>("language");
        QTest::addColumn<double>("points");
        for (const char* language : {"de", "fr", "es", "ja", "zh_CN", "en"}) {
            QTest::addRow("%s", language) << language << 10.5;
            QTest::addRow("%s, large", language) << language << 16.0;
        }
    }
    void everyWordIsWhole() {
        QFETCH(const QString, language);
        QFETCH(const double, points);
        QFont font = QApplication::font();
        font.setPointSizeF(points);
        QApplication::setFont(font);
        for (const QString& window : kWindows) checkWindow(*open(window, language)->window());
    }

    void focusIsSeen() {
        for (const QString& window : kWindows) {
            const auto controller = open(window);
            for (QWidget* control : controller->window()->findChildren<QWidget*>()) {
                const bool takesFocus = (control->focusPolicy() & Qt::TabFocus) != 0;
                if (!control->isVisible() || !takesFocus) continue;
                control->clearFocus();
                const QImage without = rendered(*control);
                control->setFocus();
                QVERIFY2(rendered(*control) != without, qPrintable(control->objectName()));
            }
        }
    }
};

QTEST_MAIN(ReadabilityTest)
#include "ReadabilityTest.moc"
