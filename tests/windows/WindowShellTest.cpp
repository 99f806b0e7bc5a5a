// Owns the windows around the controls: modal runs, drags of a window, a lost display.

#include "Labels.h"
#include "WindowTest.h"

namespace {

using Open = std::function<void(ViewController&)>;
using Dismiss = std::function<void(QWidget&)>;

void clickItsButton(QWidget& small) {
    QTest::mouseClick(small.findChild<QPushButton*>(), Qt::LeftButton);
}

/// Through the window, because Space needs the focus.
Dismiss pressKey(Qt::Key key) {
    return [key](QWidget& small) { QTest::keyClick(small.windowHandle(), key); };
}

/// The name of the window that is opened over the settings window and then dismissed.
QString dismissed(const SettingsWindow& settings, const Open& open, const Dismiss& dismiss) {
    QString name;
    whenModal([&](QWidget& small) { // without checks, whose failure would leave it open
        (void)QTest::qWaitForWindowActive(&small);
        const QWindow* owner = small.windowHandle()->transientParent();
        name = owner == settings.window().windowHandle() ? small.objectName() : "without owner";
        dismiss(small);
    });
    open(settings.view());
    return QApplication::activeModalWidget() ? "still open" : name;
}

/// Tries every action of assistive technology and a key on a part of a window.
// NOLINTNEXTLINE(misc-no-recursion): as deep as the window's controls
void meddle(QAccessibleInterface& part) {
    if (auto* value = part.valueInterface()) value->setCurrentValue(3);
    if (auto* actions = part.actionInterface()) {
        for (const QString& action : actions->actionNames()) actions->doAction(action);
    }
    auto* control = qobject_cast<QWidget*>(part.object());
    if (control) QTest::keyClick(control, Qt::Key_Home);
    for (int i = 0; i < part.childCount(); ++i) meddle(*part.child(i));
}

/// The values of its controls, and whether a list is open.
QString stateOf(const QWidget& window) {
    QString values = QApplication::activePopupWidget() ? "open list " : "";
    for (const QWidget* control : window.findChildren<QWidget*>()) {
        if (control->property("action").isValid())
            values += control->metaObject()->userProperty().read(control).toString() + ' ';
    }
    return values;
}

void showAlert(ViewController& view) {
    view.showAlertWindow(nullptr);
}

struct Background : MyImageView {
    Background() : MyImageView(nullptr) {
        resize(200, 80);
        legend.move(0, 40);
        show();
    }
    void startMove() override { ++moves; }
    int moves = 0;
    LegendButton legend{this};
};

} // namespace

class WindowShellTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpApplication(*qApp); }
    void init() { TestHost::reset(); }

    void everyWayEndsTheModalRun_data() {
        QTest::addColumn<Dismiss>("dismiss");
        row("its button", Dismiss(clickItsButton));
        row("the program", Dismiss([](QWidget& small) { small.close(); }));
        row("the window frame", Dismiss([](QWidget& small) { small.windowHandle()->close(); }));
        row("Return", pressKey(Qt::Key_Return));
        row("Enter", pressKey(Qt::Key_Enter));
        row("Space", pressKey(Qt::Key_Space));
        row("Esc", pressKey(Qt::Key_Escape));
    }
    void everyWayEndsTheModalRun() {
        QFETCH(const Dismiss, dismiss);
        const SettingsWindow settings;
        auto& button = settings.control("AboutButton");
        const auto openAbout = [&](ViewController&) { QTest::mouseClick(&button, Qt::LeftButton); };
        QCOMPARE(dismissed(settings, openAbout, dismiss), "AboutWindow");
        QCOMPARE(dismissed(settings, showAlert, dismiss), "AlertWindow");
    }

    void theSettingsWindowIsInertBehindTheAlert() {
        const SettingsWindow settings;
        auto& groove = settings.control<QSlider>("SliderHeadphoneVolume");
        QTest::mousePress(&groove, Qt::LeftButton, {}, {groove.width() - 9, 34});
        const QString before = stateOf(settings.window());
        TestHost::take();
        whenModal([&](QWidget& alert) {
            meddle(*QAccessible::queryAccessibleInterface(&settings.window()));
            for (QAction* action : settings.window().actions()) action->trigger();
            settings.control<CustomPopUpButton>("PopupRecordQuality").showMenu();
            QTest::qWait(600); // a held groove repeats after half a second
            QCOMPARE(stateOf(settings.window()), before);
            QVERIFY(alert.isVisible());
            alert.close();
        });
        device().unplug();
        QCOMPARE(endOf([&] { settings.view().TurnOffHdcp(nullptr); }), "exit 0");
        QTest::qWait(150); // nor does it repeat afterwards
        QCOMPARE(stateOf(settings.window()), before);
        QVERIFY(TestHost::takeRequests().empty());
    }

    void theAlertNamesTheDevice() {
        const auto controller = WindowDescription("Main").instantiateWindowController("Alert Window Controller");
        const QString text = controller->window()->findChild<QLabel*>("LabelCheck1")->text();
        QVERIFY(text.contains(QString::asprintf(" %04x:%04x.", TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID)));
    }

    void onlyErrorsOfQtAreLogged() {
        TestHost::take();
        for (const auto type : {QtDebugMsg, QtInfoMsg, QtWarningMsg, QtCriticalMsg, QtFatalMsg})
            logQtMessage(type, {}, QString::number(type));
        for (const char* reason : {"could not connect to display", "Failed to create wl_display",
                 "The Wayland connection experienced a fatal error"})
            logQtMessage(QtWarningMsg, {}, reason); // then Qt ends the program
        const std::vector<std::string> lines{"log 2", "log 3", "log could not connect to display",
            "log Failed to create wl_display", "log The Wayland connection experienced a fatal error"};
        QCOMPARE(TestHost::take(), lines);
    }

    void aLostDisplayEndsTheProgram() {
        const auto lose = [](const char* message) {
            return endOf([&] { logQtMessage(QtWarningMsg, {}, message); }); // that Qt writes
        };
        TestHost::take();
        QCOMPARE(lose("The X11 connection broke (error 1). Did the X11 server die?"), "exit 0");
        QVERIFY(QString::fromStdString(TestHost::take().front()).startsWith("log The X11 connection broke"));
        const char* wayland = "The Wayland connection broke. Did the Wayland compositor die?";
        QCOMPARE(lose(wayland), "exit 0");
        qputenv("QT_WAYLAND_RECONNECT", "1");
        const bool qtReconnects = QLibraryInfo::version() >= QVersionNumber(6, 5);
        QCOMPARE(lose(wayland), qtReconnects ? "" : "exit 0");
    }

    void onlyADragMovesTheWindow() {
        Background background;
        QWindow* window = background.windowHandle();
        const QPoint onLegend(1, 41);
        const QPoint farEnough = onLegend + QPoint(QApplication::startDragDistance(), 0);
        QTest::mousePress(window, Qt::LeftButton, {}, onLegend);
        QTest::mouseMove(window, farEnough - QPoint(1, 0));
        QCOMPARE(background.moves, 0); // a shaky click
        QTest::mouseMove(window, farEnough);
        QTest::mouseMove(window, farEnough + QPoint(1, 0));
        QCOMPARE(background.moves, 1);
        QTest::mouseRelease(window, Qt::LeftButton);
    }
};

QTEST_MAIN(WindowShellTest)
#include "WindowShellTest.moc"
