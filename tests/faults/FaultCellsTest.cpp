// Owns requests, log lines and shown values of each action, and each failure at each request: the
// program and a model of its rules must do the same on equal devices.

#include "Model.h"
#include "WindowTest.h"

#include <random>

namespace {

/// An action of the user: changes a control, then its handler runs.
struct Action {
    const char* control;
    const char* property;
    void (ViewController::*handler)(QObject*);
    Field field;
    int chosen; ///< level, volume or state
};

using V = ViewController;
constexpr std::array<Action, 6> kActions{{
    {"PopupRecordQuality", "currentIndex", &V::ChooseRecordQuality, BitRate, 2},
    {"SliderMicrophoneVolume", "value", &V::ChangeMicrophoneVolume, Microphone, 201},
    {"SliderHeadphoneVolume", "value", &V::ChangeHeadphoneVolume, Headphone, 202},
    {"SliderHmdiAuxVolume", "value", &V::ChangeHdmiAuxVolume, Hdmi, 203},
    {"HdcpOnButton", "checked", &V::TurnOnHdcp, Hdcp, 1},
    {"HdcpOffButton", "checked", &V::TurnOffHdcp, Hdcp, 0},
}};

/// A change of the device between two requests.
struct Disturbance {
    const char* name;
    void (*happen)(SimulatedDevice& device);
};

constexpr std::array<Disturbance, 4> kDisturbances{{
    {"short data", [](SimulatedDevice& on) { on.addFault({}, 1, RequestFault::ShortData); }},
    {"unplugged", [](SimulatedDevice& on) { on.unplug(); }},
    {"plugged in again", [](SimulatedDevice& on) { on.plugIn(); }},
    {"no camera", [](SimulatedDevice& on) { on.videoControlInterface.reset(); }},
}};

/// The content of the window as the model writes it.
std::string shown(const SettingsWindow& settings) {
    std::string text;
    for (const Action& each : kActions)
        text += settings.control(each.control).property(each.property).toByteArray() + ' ';
    text += settings.control<QLabel>("LabelFwVersion").text().toStdString() + ' ';
    const QImage stars = settings.control<QLabel>("QualityImage").pixmap().toImage();
    for (const char* name : kStars) {
        if (mainBundle::imageNamed(QString::fromLatin1(name)).toImage() == stars) text += name;
    }
    return text;
}

// Start-up, then each action
void useProgram() {
    const SettingsWindow settings;
    TestHost::note(shown(settings));
    for (const Action& action : kActions) {
        QWidget& control = settings.control(action.control);
        control.blockSignals(true); // not while the handler runs, which must block them itself
        control.setProperty(action.property, action.chosen);
        control.blockSignals(false);
        (settings.view().*action.handler)(nullptr);
        TestHost::note(shown(settings));
    }
}
void useModel() {
    Model model;
    model.startUp();
    TestHost::note(model.shown());
    for (const Action& action : kActions) {
        model.change(action.field, action.chosen);
        TestHost::note(model.shown());
    }
}

/// Uses the program or the model, with a disturbance after `n` requests. After every request
/// another program changes all settings at random. Returns the journal, and whether there was a
/// disturbance.
auto run(const Disturbance& disturbance, unsigned n, unsigned seed, void (*use)()) {
    TestHost::reset();
    device().setClock(std::array<std::uint8_t, 6>{9, 1, 2, 3, 4, 5});
    std::minstd_rand random(seed);
    unsigned requests = 0;
    const auto proceed = [&] {
        // HDCP is on in one of 8 cases.
        std::ranges::generate(device().settings, [&] { return random() & 0x31; });
        std::ranges::generate(device().audio, std::ref(random));
        std::ranges::generate(device().versions, std::ref(random));
        if (requests++ == n) disturbance.happen(device());
    };
    proceed();
    device().onRequest = [&, note = device().onRequest](const RecordedRequest& request) {
        note(request);
        proceed();
    };
    const std::string end = endOf(use);
    QStringList journal;
    for (const std::string& entry : TestHost::take()) {
        journal << QString::fromStdString(entry);
        if (entry == end) break; // destructors close the interface
    }
    return std::pair(journal, requests > n);
}

/// Dismisses every alert, with an entry in the journal.
void dismissAlerts() {
    whenModal([](QWidget& alert) {
        TestHost::note(alert.objectName().toStdString());
        alert.close();
        dismissAlerts();
    });
}

} // namespace

class FaultCellsTest : public QObject {
    Q_OBJECT

private slots:
    static void initTestCase() {
        setUpApplication(*qApp);
        dismissAlerts();
    }

    static void everyDisturbanceAfterEveryRequest() {
        unsigned cells = 0;
        for (const Disturbance& disturbance : kDisturbances) {
            for (unsigned n = 0;; ++n, ++cells) {
                const auto [journal, happened] = run(disturbance, n, cells, useProgram);
                const QStringList predicted = run(disturbance, n, cells, useModel).first;
                if (journal != predicted) qInfo("%s after %u requests", disturbance.name, n);
                QCOMPARE(journal, predicted);
                if (!happened) break;
            }
        }
        qInfo("%u fault cells hold", cells);
        QVERIFY(cells > 100);
    }
};

QTEST_MAIN(FaultCellsTest)
#include "FaultCellsTest.moc"
