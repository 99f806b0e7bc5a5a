// Every fault at every request of start-up and of each handler, and a long random run: what the program does,
// says, shows and leaves in the device against the model of the rules.

#include "ApplicationMain.h"
#include "Bundle.h"
#include "Model.h"
#include "OpenWindow.h"

#include <QSignalBlocker>

#include <numeric>
#include <random>

namespace {

/// What the program's `exit` throws here, so that many ends fit into one process: what happened until then.
using Ended = std::vector<std::string>;

/// What the user does.
struct Action {
    const char* name;
    void (ViewController::*handler)(QObject*) = nullptr; ///< absent: starts the program
    Field field = Clock;                                 ///< that it changes
    int chosen = 0;                                      ///< level, volume or state
    const char* control = nullptr;                       ///< what the user's hand changes before the handler runs
    const char* property = nullptr;                      ///< of the control
    bool clockIsRight = true;                            ///< the device's, before
};

constexpr std::array<Action, 8> kActions{{
    {"quality", &ViewController::ChooseRecordQuality, BitRate, 0, "PopupRecordQuality", "currentIndex"},
    {"microphone", &ViewController::ChangeMicrophoneVolume, Microphone, 201, "SliderMicrophoneVolume", "value"},
    {"headphone", &ViewController::ChangeHeadphoneVolume, Headphone, 201, "SliderHeadphoneVolume", "value"},
    {"HDMI/AUX", &ViewController::ChangeHdmiAuxVolume, Hdmi, 201, "SliderHmdiAuxVolume", "value"},
    {"HDCP on", &ViewController::TurnOnHdcp, Hdcp, 1, "HdcpOnButton", "checked"},
    {"HDCP off", &ViewController::TurnOffHdcp, Hdcp, 0, "HdcpOffButton", "checked"},
    {"start-up"},
    {"start-up, clock wrong", nullptr, Clock, 0, nullptr, nullptr, false},
}};

/// Puts that many devices, as the model has them, on the simulated bus.
void setUpDevices(std::size_t number, bool clockIsRight) {
    TestHost::reset();
    auto& devices = SimulatedBus::instance().devices;
    device().settings = kSettings;
    device().audio = kAudio;
    if (!clockIsRight) device().setClock(kWrongClock);
    while (devices.size() < number) devices.push_back(std::make_shared<SimulatedDevice>(device()));
}

/// What the window shows, in the model's words.
std::string shown(const SettingsWindow& settings) {
    std::string text = "window: ";
    for (const Action& each : kActions) {
        if (each.control) text += settings.control(each.control).property(each.property).toString().toStdString() + ' ';
    }
    text += settings.control<QLabel>("LabelFwVersion").text().toStdString() + ' ';
    const QImage stars = settings.control<QLabel>("QualityImage").pixmap().toImage();
    for (const char* name : {"img_starBest.png", "img_starGood.png", "img_starGen.png"}) {
        if (mainBundle::imageNamed(QString::fromLatin1(name)).toImage() == stars) text += name;
    }
    return text;
}

/// Whether what is written is what was read right before it but for the command and the value (or the clock),
/// whatever the device makes of it.
bool writesWhatItRead(const RecordedRequest& request, std::vector<std::uint8_t>& read) {
    if (request.isGet()) read = request.data;
    if (read.size() != request.data.size()) return false;
    if (request.selector() == 11 && !request.isGet() && request.data[0] == 2) return true;
    return std::inner_product(read.begin(), read.end(), request.data.begin(), 0, std::plus(), std::not_equal_to())
        <= (request.selector() == 11 ? 2 : 1);
}

/// Writes down that the alert came up, and dismisses it, whenever it does.
void dismissAlerts() {
    whenModal([](QWidget& alert) {
        TestHost::note(alert.objectName().toStdString());
        alert.close();
        dismissAlerts();
    });
}

/// Runs an action to its end or the program's. What happened, and what is shown then.
std::vector<std::string> journalOf(std::optional<SettingsWindow>& settings, const Action& action, int chosen) {
    try {
        if (!action.handler) settings.emplace();
        if (action.handler) {
            const QSignalBlocker blocker(settings->control(action.control));
            settings->control(action.control).setProperty(action.property, action.field == Hdcp ? 1 : chosen);
            (settings->view().*action.handler)(nullptr);
        }
    } catch (const Ended& journal) {
        return journal;
    }
    TestHost::note(shown(*settings));
    return TestHost::take();
}

} // namespace

// NOLINTNEXTLINE(bugprone-reserved-identifier): the linker's name for it
extern "C" void __wrap_exit(int status) {
    TestHost::note("exit " + std::to_string(status));
    throw Ended(TestHost::take());
}

class FaultCellsTest : public QObject {
    Q_OBJECT

private:
    /// Compares one cell with its prediction. Returns how many requests it has.
    static std::size_t cell(const Action& action, const Plan& plan) {
        const auto predicted = predict(action.field, action.chosen, action.clockIsRight, plan);
        setUpDevices(plan.trouble.devices, action.clockIsRight);
        std::optional<SettingsWindow> settings;
        if (action.handler) settings.emplace();
        device().requests.clear();
        prepare(SimulatedBus::instance().devices, plan);
        auto journal = journalOf(settings, action, action.chosen);
        std::size_t requests = 0;
        for (const auto& each : SimulatedBus::instance().devices) {
            journal.push_back(text(kKept, held(*each)));
            requests += each->requests.size();
        }
        const auto [is, expected] = std::ranges::mismatch(journal, predicted);
        if (is != journal.end())
            qFatal("%s, %s at request %u%s: %s instead of %s", action.name, plan.trouble.name, plan.n,
                plan.twice ? " and a stall after it" : "", is->c_str(), expected->c_str());
        return requests;
    }

    /// Returns the number of cells.
    static unsigned faultAtEveryRequest(const Action& action, const Trouble& trouble, bool twice) {
        for (unsigned n = trouble.fault ? 1 : 0, cells = 0;; ++n) {
            const std::size_t requests = cell(action, {trouble, n, twice});
            // As long as there is a request for the fault to meet. A second fault that meets none makes no new cell.
            if (requests < n) return cells;
            cells += !twice || requests > n ? 1 : 0;
        }
    }

    std::uint8_t below(unsigned limit) { return static_cast<std::uint8_t>(m_random() % limit); }

    /// Now and then, also between an action's requests, a second writer changes what the action does not name.
    void startSecondWriter() {
        device().onRequest = [this, note = device().onRequest](const RecordedRequest& request) {
            note(request);
            m_writesOnlyItsOwn = m_writesOnlyItsOwn && writesWhatItRead(request, m_read);
            if (below(2) == 0) return;
            const auto levels = static_cast<std::uint8_t>(below(3) * 16 + below(3));
            if (m_field != BitRate) m_meant[BitRate] = device().settings[8] = levels;
            if (m_field != Hdcp) m_meant[Hdcp] = device().settings[9] = below(2);
        };
    }

    /// A random action with up to two random faults. Whether it ended the program, which is then started again.
    bool actAtRandom(std::optional<SettingsWindow>& settings) {
        const std::size_t other = below(4);
        m_meant[other] = device().audio[std::array{3U, 5U, 1U, 2U}[other]] = below(256);
        // Without garbage, which would be written back.
        for (int faults = below(3); faults > 0; --faults)
            device().addFault({}, 1U + below(5), *kTroubles[below(4)].fault);
        const Action& action = kActions[below(6)]; // the handlers
        m_field = action.field;
        const int chosen = m_field == Hdcp ? action.chosen : below(m_field == BitRate ? 3 : 256);
        const bool ended = journalOf(settings, action, chosen).back() == "exit 0";
        device().clearFaults();
        if (!device().plugged()) device().plugIn();
        if (ended) settings.emplace();
        // What was named may have changed to what was chosen, and nothing else has.
        const auto mayBe = [&](Field field, int value) {
            if (held(device())[field] == value) m_meant[field] = value;
        };
        mayBe(m_field, m_field == BitRate ? chosen * 16 + m_meant[BitRate] % 16 : chosen);
        if (m_field == Hdmi) mayBe(Aux, chosen); // they go together
        return ended;
    }

private slots:
    static void initTestCase() {
        setUpApplication(*qApp);
        dismissAlerts();
    }

    static void everyFaultAtEveryRequest() {
        unsigned cells = 0;
        for (const Action& action : kActions) {
            for (const Trouble& trouble : kTroubles)
                cells += faultAtEveryRequest(action, trouble, false) + faultAtEveryRequest(action, trouble, true);
        }
        qInfo("%u fault cells hold", cells);
        QVERIFY(cells > 500);
    }

    void noSettingIsEverLost() {
        const unsigned seed = qEnvironmentVariable("TAVRO_SEED", QString::number(std::random_device()())).toUInt();
        qInfo("seed %u (TAVRO_SEED=%u repeats it)", seed, seed);
        const int actions = qEnvironmentVariable("TAVRO_ACTIONS", QStringLiteral("1000")).toInt();
        m_random.seed(seed);
        setUpDevices(1, true);
        std::optional<SettingsWindow> settings(std::in_place);
        m_meant = held(device());
        startSecondWriter();
        int ends = 0;
        for (int turn = 0; turn < actions; ++turn) {
            ends += actAtRandom(settings) ? 1 : 0;
            QCOMPARE(held(device()), m_meant);
            QVERIFY(m_writesOnlyItsOwn);
        }
        qInfo("%d actions, %d of them ended the program, no setting lost", actions, ends);
        QVERIFY(ends > actions / 100);
    }

private:
    // Of the random run.
    std::mt19937 m_random;
    Field m_field = Clock;            ///< that the action names
    Block m_meant;                    ///< what the device must keep, by field
    std::vector<std::uint8_t> m_read; ///< the last block
    bool m_writesOnlyItsOwn = true;
};

QTEST_MAIN(FaultCellsTest)
#include "FaultCellsTest.moc"
