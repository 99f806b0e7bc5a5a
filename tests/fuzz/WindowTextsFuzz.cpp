// Blocks with any bytes in them, shown in the settings window by start-up: a device may report anything.

#include "AppDelegate.h"
#include "ApplicationMain.h"
#include "TestHost.h"
#include "ViewController.h"
#include "WindowDescription.h"

#include <QApplication>
#include <QLabel>
#include <QRadioButton>
#include <QSlider>

#include <algorithm>
#include <span>

namespace {

/// Takes the next bytes of the input, as far as there are any.
template <std::size_t kSize>
void take(std::span<const std::uint8_t>& input, std::array<std::uint8_t, kSize>& block) {
    const std::size_t count = std::min(input.size(), kSize);
    std::ranges::copy(input.first(count), block.begin());
    input = input.subspan(count);
}

WindowController& openWindow() {
    static int count = 1;
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    static auto* application = new QApplication(count, arguments); // lives as long as the fuzzer
    setUpApplication(*application);
    TestHost::reset();
    static AppDelegate delegate;
    static auto controller = WindowDescription(QStringLiteral("Main"))
                                 .instantiateWindowController(QStringLiteral("Settings Window Controller"), &delegate);
    controller->window()->show();
    return *controller;
}

/// The window must show what the device holds, whatever that is, within what its controls can show.
void expectShown(const QWidget& window) {
    const auto expect = [](bool holds) {
        if (!holds) __builtin_trap();
    };
    const auto volume = [&](const char* name) { return window.findChild<QSlider*>(name)->value(); };
    expect(volume("SliderHmdiAuxVolume") == device().audio[1]);
    expect(volume("SliderMicrophoneVolume") == device().audio[3]);
    expect(volume("SliderHeadphoneVolume") == device().audio[5]);
    expect(window.findChild<QRadioButton*>("HdcpOnButton")->isChecked() == (device().settings[9] == 1));
    expect(window.findChild<QRadioButton*>("HdcpOffButton")->isChecked() == (device().settings[9] != 1));
    const auto& v = device().versions;
    const QString text = window.findChild<QLabel*>("LabelFwVersion")->text();
    expect(text.contains(QString(" v%1.%2.%3.%4 (").arg(v[22]).arg(v[23]).arg(v[24]).arg(v[25])));
    expect(!window.findChild<QLabel*>("QualityImage")->pixmap().isNull());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static WindowController& controller = openWindow();
    std::span input(data, size);
    take(input, device().versions);
    take(input, device().audio);
    std::array<std::uint8_t, 6> clock{};
    take(input, clock);
    std::array<std::uint8_t, 2> levels{};
    take(input, levels);
    device().setClock(clock);
    device().settings[8] = levels[0];
    device().settings[9] = levels[1];
    controller.contentController()->viewDidLoad();
    expectShown(*controller.window());
    device().requests.clear();
    TestHost::take();
    return 0;
}
