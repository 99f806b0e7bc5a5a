// Owns hands on the pop-up: what the toolkit's combo box does otherwise, unless ours is safer on purpose.

#include "WindowTest.h"

namespace {

const QStringList kTitles{"High", "Middle", "Low"};

/// A combo box or pop-up with the three levels, in a window with another control.
struct Chooser {
    QWidget window;
    QPushButton other{&window};
    QWidget* face = nullptr; ///< the window owns it
    QWidget* list = nullptr; ///< the window of the open list
    std::function<QPoint(int)> row;
    std::function<int()> current;
    QString choices;
    bool isOpenedByHurriedPress = false;

    [[nodiscard]] bool isOpen() const { return list->isVisible(); }
    void noteChoice() { choices += isOpen() ? ", chosen before it closes" : ", chosen"; }
    [[nodiscard]] QPoint centre() const { return face->mapToGlobal(face->rect().center()); }
    [[nodiscard]] QString state() const {
        const QString focus = isOpen() || face->hasFocus() ? "" : ", not focused";
        return QString(isOpen() ? "open" : "closed") + QString(", level %1").arg(current()) + choices + focus;
    }
    void show() {
        face->setGeometry(200, 240, 160, 28);
        window.resize(640, 514);
        window.show();
        face->setFocus();
        (void)QTest::qWaitForWindowActive(&window);
    }
};

void addComboBox(Chooser& chooser, int level) {
    auto* combo = new QComboBox(&chooser.window);
    combo->addItems(kTitles);
    combo->setCurrentIndex(level);
    QObject::connect(combo, &QComboBox::activated, [&] { chooser.noteChoice(); });
    QAbstractItemView* view = combo->view();
    chooser.face = combo;
    chooser.list = view->window();
    chooser.row = [view](int index) {
        return view->viewport()->mapToGlobal(view->visualRect(view->model()->index(index, 0)).center());
    };
    chooser.current = [combo] { return combo->currentIndex(); };
}

void addPopUp(Chooser& chooser, int level) {
    auto* popUp = new CustomPopUpButton(&chooser.window);
    popUp->setFocusPolicy(Qt::StrongFocus);
    popUp->addItemsWithTitles(kTitles);
    popUp->selectItemAtIndex(level);
    QMenu* menu = popUp->menu();
    QObject::connect(menu, &QMenu::triggered, [&] { chooser.noteChoice(); });
    chooser.face = popUp;
    chooser.list = menu;
    chooser.row = [menu](
                      int index) { return menu->mapToGlobal(menu->actionGeometry(menu->actions()[index]).center()); };
    chooser.current = [popUp] { return popUp->indexOfSelectedItem(); };
}

/// What a hand does.
struct Hand {
    QString name;
    std::function<void(Chooser&)> act;
    std::function<void(Chooser&)> safer = act; ///< what the combo box gets in its place, where ours is safer
};

// The keyboard

void type(Chooser& chooser, QKeyCombination keys, bool isHeld = false) {
    typeInto(chooser.window, keys, isHeld);
}

/// A key with Ctrl, Alt or Meta chooses nothing: those belong to shortcuts and window managers. In the open list F4 and
/// Alt+Down choose nothing either, since the toolkit's versions differ.
void typeSafely(Chooser& chooser, QKeyCombination keys) {
    const auto command = keys.keyboardModifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const bool isAltDown = keys == (Qt::ALT | Qt::Key_Down);
    const bool isReturn = keys.key() == Qt::Key_Return || keys.key() == Qt::Key_Enter;
    const bool opens = keys.key() == Qt::Key_Space || isAltDown;
    const bool mayChoose = chooser.isOpen() ? isReturn : !opens && keys.key() != Qt::Key_Tab;
    if (chooser.isOpen() && (keys.key() == Qt::Key_F4 || isAltDown))
        type(chooser, Qt::Key_Escape);
    else if (!command || !mayChoose || keys == (Qt::ALT | Qt::Key_Up))
        type(chooser, keys);
}

Hand key(QKeyCombination keys) {
    return {QKeySequence(keys).toString(), [=](Chooser& chooser) { type(chooser, keys); },
        [=](Chooser& chooser) { typeSafely(chooser, keys); }};
}

/// Is one press.
Hand heldKey(Qt::Key key) {
    return {"held " + QKeySequence(key).toString(), [=](Chooser& chooser) { type(chooser, key, true); },
        [=](Chooser& chooser) { typeSafely(chooser, key); }};
}

// The mouse

void mouse(Chooser& chooser, QTest::MouseAction action, QPoint at, Qt::MouseButton button = Qt::LeftButton) {
    QWindow& under = *(chooser.isOpen() ? *chooser.list : chooser.window).windowHandle();
    QTest::mouseEvent(action, &under, button, {}, under.mapFromGlobal(at));
}

struct Place {
    QString name;
    std::function<QPoint(Chooser&)> at; ///< on the screen
};

Place face() {
    return {"the face", [](Chooser& chooser) { return chooser.centre(); }};
}

Place row(int index) {
    return {"row " + QString::number(index), [=](Chooser& chooser) { return chooser.row(index); }};
}

Place fromFace(const QString& name, QPoint offset) {
    return {name, [=](Chooser& chooser) { return chooser.centre() + offset; }};
}

/// A release within the double-click interval of the press that opened the list chooses nothing, and a press that does
/// not move only opens it, however long it lasts.
void dragSafely(Chooser& chooser, const Place& from, const Place& to, const std::function<void(Chooser&)>& drag) {
    const bool isHurried = QApplication::doubleClickInterval() > 0;
    const bool opens = !chooser.isOpen() && from.name == face().name;
    const bool isRowOverFace = to.name == row(std::max(chooser.current(), 0)).name;
    if (opens && (isHurried || to.name == from.name || isRowOverFace)) {
        type(chooser, Qt::Key_Space);
        mouse(chooser, QTest::MouseMove, to.at(chooser));
        chooser.isOpenedByHurriedPress = isHurried;
    } else if (chooser.isOpenedByHurriedPress && from.name != "beside") {
        mouse(chooser, QTest::MouseMove, from.at(chooser));
        mouse(chooser, QTest::MouseMove, to.at(chooser));
    } else {
        drag(chooser);
    }
}

Hand drag(const Place& from, const Place& to, Qt::MouseButton button = Qt::LeftButton) {
    const auto act = [=](Chooser& chooser) {
        mouse(chooser, QTest::MousePress, from.at(chooser), button);
        mouse(chooser, QTest::MouseMove, to.at(chooser));
        mouse(chooser, QTest::MouseRelease, to.at(chooser), button);
    };
    return {QString("press button %1 on %2, release on %3").arg(button).arg(from.name, to.name), act,
        [=](Chooser& chooser) { dragSafely(chooser, from, to, act); }};
}

Hand click(const Place& place) {
    return drag(place, place);
}

Hand pressEscapeRelease(const Place& place) {
    return {"press on " + place.name + ", Esc, release", [=](Chooser& chooser) {
                mouse(chooser, QTest::MousePress, place.at(chooser));
                type(chooser, Qt::Key_Escape);
                mouse(chooser, QTest::MouseRelease, chooser.centre());
            }};
}

/// Chooses nothing.
Hand wheel() {
    const auto act = [](Chooser& chooser) { turnWheel(chooser.isOpen() ? *chooser.list : *chooser.face, {0, -120}); };
    return {"wheel", act, [](Chooser&) {}};
}

// The comparison

int compared = 0;

QStringList statesAfter(const QList<Hand>& hands, int level, bool isOurs) {
    Chooser chooser;
    const auto add = isOurs ? addPopUp : addComboBox;
    add(chooser, level);
    chooser.show();
    QStringList states;
    QString done = QString("level %1").arg(level);
    for (const Hand& hand : hands) {
        const auto& act = isOurs ? hand.act : hand.safer;
        act(chooser);
        done += ", " + hand.name;
        states << done + ": " + chooser.state();
    }
    return states;
}

/// Operates both with the same hands, one after the other, beginning with each level and with none.
void compare(const QList<Hand>& hands) {
    for (int level = -1; level < kTitles.size() && !QTest::currentTestFailed(); ++level) {
        ++compared;
        QCOMPARE(statesAfter(hands, level, true), statesAfter(hands, level, false));
    }
}

const Hand kOpen = key(Qt::Key_Space);
const Hand kReturn = key(Qt::Key_Return);

} // namespace

class PopUpTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        setUpApplication(*qApp);
        QLoggingCategory::defaultCategory()->setEnabled(QtWarningMsg, false); // the platform's, at each list
    }
    void init() {
        QApplication::setDoubleClickInterval(600'000);
        QApplication::setKeyboardInputInterval(600'000);
    }
    void cleanupTestCase() { qInfo("%d combinations compared", compared); }

    void aKey_data() {
        QTest::addColumn<QKeyCombination>("keys");
        for (const auto key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown,
                 Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_F4, Qt::Key_Escape, Qt::Key_Tab, Qt::Key_Left,
                 Qt::Key_H, Qt::Key_M, Qt::Key_L, Qt::Key_Z}) {
            for (const auto modifier :
                {Qt::NoModifier, Qt::ControlModifier, Qt::AltModifier, Qt::ShiftModifier, Qt::MetaModifier}) {
                const QKeyCombination keys = modifier | key;
                QTest::newRow(qPrintable(QKeySequence(keys).toString())) << keys;
            }
        }
    }
    void aKey() {
        QFETCH(QKeyCombination, keys);
        compare({key(keys), kReturn});
        compare({kOpen, key(keys), kReturn});
        if (keys.keyboardModifiers() != Qt::NoModifier || keys.key() == Qt::Key_Tab) return;
        compare({heldKey(keys.key()), kReturn});
        compare({kOpen, heldKey(keys.key()), kReturn});
    }

    void twoKeys() {
        const QList<Qt::Key> browsing{Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End, Qt::Key_PageUp,
            Qt::Key_PageDown, Qt::Key_H, Qt::Key_M, Qt::Key_L};
        for (const Qt::Key first : browsing) {
            for (const Qt::Key second : browsing) {
                compare({key(first), key(second)});
                compare({kOpen, key(first), key(second), kReturn});
            }
        }
    }
    void twoInitialsSlowly() {
        QApplication::setKeyboardInputInterval(0);
        const Hand pause{"a pause", [](Chooser&) { QTest::qSleep(2); }};
        for (const Qt::Key first : {Qt::Key_H, Qt::Key_M, Qt::Key_L}) {
            for (const Qt::Key second : {Qt::Key_H, Qt::Key_M, Qt::Key_L}) compare({key(first), pause, key(second)});
        }
    }

    void aMouse_data() {
        QTest::addColumn<int>("interval");
        QTest::newRow("hurried") << 600'000;
        QTest::newRow("slow") << 0; // later than the double-click interval
    }
    void aMouse() {
        QFETCH(int, interval);
        QApplication::setDoubleClickInterval(interval);
        const QList<Place> places{row(0), row(1), row(2), fromFace("beside", {-150, 100})};
        for (const Hand& opening : {kOpen, click(face())}) {
            for (const Place& from : places) {
                compare({opening, drag(from, from, Qt::RightButton), kReturn});
                compare({opening, pressEscapeRelease(from), click(face())});
                for (const Place& to : places) compare({opening, drag(from, to), kReturn});
            }
            compare({opening, wheel(), kReturn});
        }
        for (const Place& to : places) compare({drag(face(), to), kReturn});
        const auto clickRight = [](Chooser& chooser) {
            mouse(chooser, QTest::MouseClick, chooser.centre(), Qt::RightButton);
        };
        compare({wheel(), {"right click", clickRight}, kReturn});
    }
    void aHurriedMouse() {
        const auto doubleClick = [](Chooser& chooser) { mouse(chooser, QTest::MouseDClick, chooser.centre()); };
        compare({{"double click", doubleClick}, kReturn});
        compare({drag(face(), fromFace("12 pixels below", {0, 12})), click(face())});
        compare({drag(face(), fromFace("22 pixels below", {0, 22})), click(face())});
    }
};

QTEST_MAIN(PopUpTest)
#include "PopUpTest.moc"
