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
    int status;
    std::vector<std::string> journal; ///< until then
};

constexpr int kActions = 8; // start-up, six handlers, start-up with the clock wrong
constexpr int kWrongClockStart = 7;
constexpr std::array<std::uint8_t, 6> kWrongClock{9, 1, 2, 3, 4, 5};
constexpr std::array<const char*, kActions> kActionNames{
    "start-up", "quality", "microphone", "headphone", "HDMI/AUX", "HDCP on", "HDCP off", "start-up, clock wrong"};
constexpr std::array<std::size_t, kActions> kNamedField{0, 7, 3, 5, 1, 8, 8, 0}; // in what `held` returns
constexpr int kChosenLevel = 0;
constexpr int kChosenVolume = 201;

bool actOnModel(Model& model, int action) {
    switch (action) {
    case 0:
    case kWrongClockStart: return model.startUp();
    case 1: return model.chooseQuality(kChosenLevel);
    case 5:
    case 6: return model.switchHdcp(action == 5 ? 1 : 0);
    default: return model.changeVolume(action - 2, kChosenVolume);
    }
}

/// Does what the user's hand does before the handler runs, then runs it.
void actOnWindow(SettingsWindow& settings, int action, int level, int volume) {
    const auto choose = [&](const char* name) {
        auto& slider = settings.control<QSlider>(name);
        const QSignalBlocker blocker(slider);
        slider.setValue(volume);
    };
    ViewController& view = settings.view();
    switch (action) {
    case 1:
        settings.control<CustomPopUpButton>("PopupRecordQuality").selectItemAtIndex(level);
        return view.ChooseRecordQuality(nullptr);
    case 2: return choose("SliderMicrophoneVolume"), view.ChangeMicrophoneVolume(nullptr);
    case 3: return choose("SliderHeadphoneVolume"), view.ChangeHeadphoneVolume(nullptr);
    case 4: return choose("SliderHmdiAuxVolume"), view.ChangeHdmiAuxVolume(nullptr);
    case 5: return view.TurnOnHdcp(nullptr);
    default: return view.TurnOffHdcp(nullptr);
    }
}

/// What the simulated device does at a request that meets trouble, in the order of the troubles.
constexpr std::array<std::optional<RequestFault>, kTroubleNames.size()> kFaults{std::nullopt, RequestFault::Stall,
    RequestFault::TimeOut, RequestFault::ShortData, RequestFault::Garbage, std::nullopt, RequestFault::Unplug,
    std::nullopt, RequestFault::Stall, RequestFault::Unplug};

/// Makes the simulated device's n-th request from now on meet trouble, and the next a stall if `twice`.
void prepareTrouble(Trouble trouble, int n, bool twice) {
    const bool another = trouble == Trouble::Another;
    if (twice)
        SimulatedBus::instance().devices[another ? 1 : 0]->addFault(
            {}, another ? 1U : static_cast<unsigned>(n) + 1, RequestFault::Stall);
    if (trouble == Trouble::GoneBefore && n == 1) device().unplug();
    if (const auto fault = kFaults[static_cast<std::size_t>(trouble)])
        device().addFault({}, static_cast<unsigned>(n), *fault);
    auto count = std::make_shared<int>(0);
    const auto note = device().onRequest;
    device().onRequest = [=](const RecordedRequest& request) {
        note(request);
        ++*count;
        if (trouble == Trouble::GoneBefore && *count == n - 1) device().unplug();
        if (trouble == Trouble::BackAfter && *count == n) {
            device().unplug();
            device().plugIn();
        }
        if (trouble == Trouble::NoCamera && *count == n) device().videoControlInterface.reset();
    };
}

void setUpDevices(Trouble trouble) {
    TestHost::reset();
    const auto note = device().onRequest;
    if (trouble == Trouble::Another) {
        SimulatedBus::instance().devices.push_back(std::make_shared<SimulatedDevice>());
        SimulatedBus::instance().devices[1]->onRequest = note;
        SimulatedBus::instance().devices[1]->setClock(std::array<std::uint8_t, 6>{23, 11, 14, 22, 13, 20});
    }
    for (const auto& each : SimulatedBus::instance().devices) {
        each->audio = {0x6D, 11, 22, 33, 0x92, 55, 0xE4};
        each->settings[8] = 0x21;
        each->settings[9] = 1;
    }
}

ModelWindow shown(const SettingsWindow& settings) {
    ModelWindow window;
    window.microphone = settings.control<QSlider>("SliderMicrophoneVolume").value();
    window.headphone = settings.control<QSlider>("SliderHeadphoneVolume").value();
    window.hdmiAux = settings.control<QSlider>("SliderHmdiAuxVolume").value();
    const QImage stars = settings.control<QLabel>("QualityImage").pixmap().toImage();
    for (const char* name : {"img_starBest.png", "img_starGood.png", "img_starGen.png"}) {
        if (mainBundle::imageNamed(QString::fromLatin1(name)).toImage() == stars) window.stars = name;
    }
    window.firmware = settings.control<QLabel>("LabelFwVersion").text().toStdString();
    window.item = settings.control<CustomPopUpButton>("PopupRecordQuality").currentIndex();
    window.hdcpOn = settings.control<QRadioButton>("HdcpOnButton").isChecked();
    return window;
}

/// The settings that a device holds, without its clock: audio block, bit rate, HDCP.
template <class Device>
Block held(const Device& device) {
    Block block(device.audio.begin(), device.audio.end());
    block.insert(block.end(), {device.settings[8], device.settings[9]});
    return block;
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

/// Writes down that the alert came up, and dismisses it.
class AlertWitness : public QObject {
public:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Show && object->isWidgetType() && object->objectName() == "AlertWindow") {
            TestHost::instance().journal.emplace_back("alert");
            QMetaObject::invokeMethod(object, "close", Qt::QueuedConnection);
        }
        return false;
    }
};

} // namespace

extern "C" void __wrap_exit( // NOLINT(bugprone-reserved-identifier): the linker's name for it
    int status) {
    throw Ended{status, TestHost::take()};
}

class FaultCellsTest : public QObject {
    Q_OBJECT

private:
    /// One cell. Returns how many requests its model made, absent if the cell does not hold.
    // NOLINTNEXTLINE(readability-function-cognitive-complexity): one cell, from its start to its comparison
    std::optional<int> cell(int action, Trouble trouble, int n, bool twice, QString& difference) {
        setUpDevices(trouble);
        Model model(std::vector<ModelDevice>(trouble == Trouble::Another ? 2 : 1));
        if (action == kWrongClockStart) {
            for (const auto& each : SimulatedBus::instance().devices) each->setClock(kWrongClock);
            for (ModelDevice& each : model.devices) std::ranges::copy(kWrongClock, each.settings.begin() + 2);
        }
        const bool starts = action == 0 || action == kWrongClockStart;
        std::optional<SettingsWindow> settings;
        if (!starts) {
            settings.emplace();
            model.startUp();
            if (TestHost::take() != std::exchange(model.journal, {})) difference = "start-up";
        }
        if (!starts) model.journal = std::vector<std::string>(1, "sleep 1.0"); // start-up's, for the clock
        model.expectTrouble(trouble, n, twice);
        prepareTrouble(trouble, n, twice);
        const bool survives = actOnModel(model, action);
        if (!survives) model.journal.emplace_back("alert");
        if (!starts) model.journal.erase(model.journal.begin());
        std::optional<int> status;
        std::vector<std::string> journal;
        try {
            if (starts)
                settings.emplace();
            else
                actOnWindow(*settings, action, kChosenLevel, kChosenVolume);
            journal = TestHost::take();
        } catch (const Ended& end) {
            status = end.status;
            journal = end.journal;
        }
        const auto first = std::mismatch(journal.begin(), journal.end(), model.journal.begin(), model.journal.end());
        if (first.first != journal.end() || first.second != model.journal.end())
            difference = QString("journal: \"%1\" instead of \"%2\"")
                             .arg(first.first == journal.end() ? "nothing" : first.first->c_str(),
                                 first.second == model.journal.end() ? "nothing" : first.second->c_str());
        if (survives ? status.has_value() : status != 0) difference = "end";
        if (survives && !status && shown(*settings) != model.window) difference = "window";
        for (std::size_t i = 0; i < model.devices.size(); ++i) {
            if (held(*SimulatedBus::instance().devices[i]) != held(model.devices[i])) difference = "device";
        }
        return difference.isEmpty() ? std::optional(model.requests) : std::nullopt;
    }

    /// Returns the number of cells.
    int faultAtEveryRequest(int action, Trouble trouble, bool twice) {
        for (int n = 1, cells = 0;; ++n) {
            QString difference;
            const std::optional<int> made = cell(action, trouble, n, twice, difference);
            const QString name = QString("%1, %2 at request %3%4: ")
                                     .arg(kActionNames[static_cast<std::size_t>(action)],
                                         kTroubleNames[static_cast<std::size_t>(trouble)], QString::number(n),
                                         twice ? " and a stall after it" : "");
            if (!made) qFatal("%s", qPrintable(name + difference));
            // As long as there is a request for the fault to meet. A second fault that meets none makes no new cell.
            if (*made < n - (trouble == Trouble::GoneBefore ? 1 : 0)) return cells;
            cells += !twice || *made > n ? 1 : 0;
        }
    }

private slots:
    void initTestCase() {
        setUpApplication(*qApp);
        qApp->installEventFilter(&m_alertWitness);
    }

    void everyFaultAtEveryRequest() {
        int cells = 0;
        for (int action = 0; action < kActions; ++action) {
            for (std::size_t i = 1; i < kTroubleNames.size(); ++i) {
                for (const bool twice : {false, true})
                    cells += faultAtEveryRequest(action, static_cast<Trouble>(i), twice);
            }
        }
        qInfo("%d fault cells hold", cells);
        QVERIFY(cells > 300);
    }

    void noSettingIsEverLost() {
        const unsigned seed = qEnvironmentVariable("TAVRO_SEED", QString::number(std::random_device()())).toUInt();
        qInfo("seed %u (TAVRO_SEED=%u repeats it)", seed, seed);
        const int actions = qEnvironmentVariable("TAVRO_ACTIONS", QStringLiteral("1000")).toInt();
        std::mt19937 random(seed);
        const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
        setUpDevices(Trouble::None);
        std::optional<SettingsWindow> settings(std::in_place);
        Block meant = held(device());
        int ends = 0;
        int action = 0;
        std::vector<std::uint8_t> read;
        bool writesOnlyItsOwn = true;
        // Now and then, also between its requests, a second writer changes what the action does not name.
        device().onRequest = [&, note = device().onRequest](const RecordedRequest& request) {
            note(request);
            writesOnlyItsOwn = writesOnlyItsOwn && writesWhatItRead(request, read);
            if (below(2) == 0) return;
            if (action != 1) meant[7] = device().settings[8] = static_cast<std::uint8_t>(below(3) * 16 + below(3));
            if (action < 5) meant[8] = device().settings[9] = static_cast<std::uint8_t>(below(2));
        };
        for (int turn = 0; turn < actions; ++turn) {
            TestHost::take();
            const std::size_t other = std::array<std::size_t, 4>{1, 2, 3, 5}[static_cast<std::size_t>(below(4))];
            meant[other] = device().audio[other] = static_cast<std::uint8_t>(below(256));
            device().clearFaults();
            for (int faults = below(3); faults > 0; --faults)
                device().addFault({}, 1U + static_cast<unsigned>(below(5)),
                    std::array{RequestFault::Stall, RequestFault::TimeOut, RequestFault::ShortData,
                        RequestFault::Unplug}[static_cast<std::size_t>(below(4))]);
            action = 1 + below(6);
            const int level = below(3);
            const int volume = below(256);
            try {
                actOnWindow(*settings, action, level, volume);
            } catch (const Ended&) {
                ++ends;
                device().clearFaults();
                device().plugIn();
                settings.reset();
                settings.emplace();
            }
            if (!device().plugged()) device().plugIn();
            // What was named may have changed to what was chosen, and nothing else has.
            const auto mayBe = [&](std::size_t field, int chosen) {
                if (held(device())[field] == chosen) meant[field] = chosen;
            };
            const int chosen = action == 1 ? level * 16 + meant[7] % 16 : action >= 5 ? 6 - action : volume;
            mayBe(kNamedField[static_cast<std::size_t>(action)], chosen);
            if (action == 4) mayBe(2, volume); // AUX goes with HDMI
            QCOMPARE(held(device()), meant);
            QVERIFY(writesOnlyItsOwn);
        }
        qInfo("%d actions, %d of them ended the program, no setting lost", actions, ends);
        QVERIFY(ends > actions / 100);
    }

private:
    AlertWitness m_alertWitness;
};

QTEST_MAIN(FaultCellsTest)
#include "FaultCellsTest.moc"
