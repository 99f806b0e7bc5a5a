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

/// What the program's `exit` becomes here, so that many ends fit into one process.
struct Ended {
    std::vector<std::string> journal; ///< until then
};

/// What the user does.
struct Action {
    const char* name;
    void (ViewController::*handler)(QObject*) = nullptr; ///< absent: starts the program
    Field field = Clock;                                 ///< that it changes
    int chosen = 0;                                      ///< level, volume or state
    const char* control = nullptr;                       ///< that shows what is chosen, if it is a level or volume
    bool clockIsRight = true;                            ///< the device's, before
};

constexpr std::size_t kHandlers = 6; // come first
constexpr std::array kActions{
    Action{"quality", &ViewController::ChooseRecordQuality, BitRate, 0, "PopupRecordQuality"},
    Action{"microphone", &ViewController::ChangeMicrophoneVolume, Microphone, 201, "SliderMicrophoneVolume"},
    Action{"headphone", &ViewController::ChangeHeadphoneVolume, Headphone, 201, "SliderHeadphoneVolume"},
    Action{"HDMI/AUX", &ViewController::ChangeHdmiAuxVolume, Hdmi, 201, "SliderHmdiAuxVolume"},
    Action{"HDCP on", &ViewController::TurnOnHdcp, Hdcp, 1},
    Action{"HDCP off", &ViewController::TurnOffHdcp, Hdcp, 0},
    Action{"start-up"},
    Action{"start-up, clock wrong", nullptr, Clock, 0, nullptr, false},
};

/// Does what the user's hand does before the handler runs, then runs it.
void act(std::optional<SettingsWindow>& settings, const Action& action, int chosen) {
    if (!action.handler) return (void)settings.emplace();
    if (action.field == BitRate) {
        settings->control<CustomPopUpButton>(action.control).selectItemAtIndex(chosen);
    } else if (action.control) {
        auto& slider = settings->control<QSlider>(action.control);
        const QSignalBlocker blocker(slider);
        slider.setValue(chosen);
    }
    (settings->view().*action.handler)(nullptr);
}

/// Puts devices like the model's on the simulated bus.
void setUpDevices(const std::vector<ModelDevice>& like) {
    TestHost::reset();
    const auto note = device().onRequest;
    SimulatedBus::instance().devices.clear();
    for (const ModelDevice& model : like) {
        const auto& added = SimulatedBus::instance().devices.emplace_back(std::make_shared<SimulatedDevice>());
        std::ranges::copy(model.audio, added->audio.begin());
        std::ranges::copy(model.settings, added->settings.begin());
        added->setClock(std::span(added->settings).subspan<2, 6>());
        added->onRequest = note;
    }
}

/// Makes the simulated devices behave as planned.
void prepare(const Plan& plan) {
    const auto n = static_cast<unsigned>(plan.n);
    const auto& devices = SimulatedBus::instance().devices;
    if (plan.trouble.fault) device().addFault({}, n, *plan.trouble.fault);
    if (plan.twice) devices.back()->addFault({}, devices.size() > 1 ? 1 : n + 1, RequestFault::Stall);
    plan.afterRequest(0, device());
    device().onRequest = [plan, number = 0, note = device().onRequest](const RecordedRequest& request) mutable {
        note(request);
        plan.afterRequest(++number, device());
    };
}

/// What the window shows, in the model's words.
std::string shown(const SettingsWindow& settings) {
    const auto volume = [&](const char* slider) { return settings.control<QSlider>(slider).value(); };
    const QImage image = settings.control<QLabel>("QualityImage").pixmap().toImage();
    QString stars;
    for (const char* name : {"img_starBest.png", "img_starGood.png", "img_starGen.png"}) {
        if (mainBundle::imageNamed(QString::fromLatin1(name)).toImage() == image) stars = name;
    }
    return QString("window: volumes %1 %2 %3, item %4, HDCP %5, %6, %7")
        .arg(volume("SliderMicrophoneVolume"))
        .arg(volume("SliderHeadphoneVolume"))
        .arg(volume("SliderHmdiAuxVolume"))
        .arg(settings.control<CustomPopUpButton>("PopupRecordQuality").currentIndex())
        .arg(settings.control<QRadioButton>("HdcpOnButton").isChecked())
        .arg(stars, settings.control<QLabel>("LabelFwVersion").text())
        .toStdString();
}

/// The settings that a device keeps, by field.
template <class Device>
Block held(const Device& device) {
    return {device.audio[3], device.audio[5], device.audio[1], device.audio[2], device.settings[8], device.settings[9]};
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
    whenShown("AlertWindow", [](QWidget& alert) {
        TestHost::note("alert");
        alert.close();
        dismissAlerts();
    });
}

/// Runs an action to its end or the program's. What happened, and what is shown then.
std::vector<std::string> journalOf(std::optional<SettingsWindow>& settings, const Action& action, int chosen) {
    try {
        act(settings, action, chosen);
    } catch (const Ended& end) {
        return end.journal;
    }
    TestHost::note(shown(*settings));
    return TestHost::take();
}

} // namespace

extern "C" void __wrap_exit( // NOLINT(bugprone-reserved-identifier): the linker's name for it
    int status) {
    TestHost::note("exit " + std::to_string(status));
    throw Ended{TestHost::take()};
}

class FaultCellsTest : public QObject {
    Q_OBJECT

private:
    /// Compares one cell with its model. Returns how many requests it has.
    static int cell(const Action& action, const Plan& plan) {
        Model model(plan.trouble.devices);
        for (ModelDevice& device : model.devices) {
            if (!action.clockIsRight) device.setClock({9, 1, 2, 3, 4, 5});
        }
        setUpDevices(model.devices);
        std::optional<SettingsWindow> settings;
        if (action.handler) {
            settings.emplace();
            (void)model.startUp(); // compared with the rest
        }
        model.expect(plan);
        prepare(plan);
        if (action.handler ? model.change(action.field, action.chosen) : model.startUp())
            model.journal.push_back(model.window());
        else
            model.journal.insert(model.journal.end(), {"alert", "exit 0"});
        const auto journal = journalOf(settings, action, action.chosen);
        const auto fail = [&](const std::string& difference) {
            qFatal("%s, %s at request %d%s: %s", action.name, plan.trouble.name, plan.n,
                plan.twice ? " and a stall after it" : "", difference.c_str());
        };
        const auto [is, expected] = std::ranges::mismatch(journal, model.journal);
        if (is != journal.end()) fail(*is + " instead of " + *expected);
        for (std::size_t i = 0; i < model.devices.size(); ++i) {
            if (held(*SimulatedBus::instance().devices[i]) != held(model.devices[i])) fail("device");
        }
        return model.requests;
    }

    /// Returns the number of cells.
    static int faultAtEveryRequest(const Action& action, const Trouble& trouble, bool twice) {
        for (int n = 1, cells = 0;; ++n) {
            const int requests = cell(action, {trouble, n, twice});
            // As long as there is a request for the fault to meet. A second fault that meets none makes no new cell.
            if (requests < n + trouble.eventAfter) return cells;
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

    /// Up to two, somewhere in the next requests.
    void addRandomFaults() {
        constexpr std::array kFaults{
            RequestFault::Stall, RequestFault::TimeOut, RequestFault::ShortData, RequestFault::Unplug};
        device().clearFaults();
        for (int faults = below(3); faults > 0; --faults)
            device().addFault({}, 1U + below(5), kFaults[below(kFaults.size())]);
    }

    /// A random action with random faults. Whether it ended the program, which is then started again.
    bool actAtRandom(std::optional<SettingsWindow>& settings) {
        const std::size_t other = below(4);
        m_meant[other] = device().audio[std::array{3U, 5U, 1U, 2U}[other]] = below(256);
        addRandomFaults();
        const Action& action = kActions[below(kHandlers)];
        m_field = action.field;
        const int chosen = m_field == Hdcp ? action.chosen : below(m_field == BitRate ? 3 : 256);
        const bool ended = journalOf(settings, action, chosen).back() == "exit 0";
        device().clearFaults();
        if (!device().plugged()) device().plugIn();
        if (ended) settings.reset();
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
        int cells = 0;
        for (const Action& action : kActions) {
            for (const Trouble& trouble : kTroubles)
                cells += faultAtEveryRequest(action, trouble, false) + faultAtEveryRequest(action, trouble, true);
        }
        qInfo("%d fault cells hold", cells);
        QVERIFY(cells > 300);
    }

    void noSettingIsEverLost() {
        const unsigned seed = qEnvironmentVariable("TAVRO_SEED", QString::number(std::random_device()())).toUInt();
        qInfo("seed %u (TAVRO_SEED=%u repeats it)", seed, seed);
        const int actions = qEnvironmentVariable("TAVRO_ACTIONS", QStringLiteral("1000")).toInt();
        m_random.seed(seed);
        setUpDevices({ModelDevice()});
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
