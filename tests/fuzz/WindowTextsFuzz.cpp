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
#include <tuple>

namespace {

/// Whether the window shows what the device holds, whatever that is, within what its controls can show.
bool showsDevice(const QWidget& window) {
    const auto volume = [&](const char* name) { return window.findChild<QSlider*>(name)->value(); };
    const auto isOn = [&](const char* name) { return window.findChild<QRadioButton*>(name)->isChecked(); };
    const auto label = [&](const char* name) { return window.findChild<QLabel*>(name); };
    const auto& [audio, v, hdcp] = std::tie(device().audio, device().versions, device().settings[9]);
    return volume("SliderHmdiAuxVolume") == audio[1] && volume("SliderMicrophoneVolume") == audio[3]
        && volume("SliderHeadphoneVolume") == audio[5] && isOn("HdcpOnButton") == (hdcp == 1)
        && isOn("HdcpOffButton") == (hdcp != 1) && !label("QualityImage")->pixmap().isNull()
        && label("LabelFwVersion")
               ->text()
               .contains(QString(" v%1.%2.%3.%4 (").arg(v[22]).arg(v[23]).arg(v[24]).arg(v[25]));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
    setUpApplication(*new QApplication(*count, *arguments)); // lives as long as the fuzzer
    TestHost::reset();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static AppDelegate delegate;
    static const auto controller =
        WindowDescription(QStringLiteral("Main"))
            .instantiateWindowController(QStringLiteral("Settings Window Controller"), &delegate);
    controller->window()->show();
    std::array<std::uint8_t, 41> bytes{};
    std::copy_n(data, std::min(size, bytes.size()), bytes.begin());
    const std::span all(bytes);
    std::ranges::copy(all.first<26>(), device().versions.begin());
    std::ranges::copy(all.subspan<26, 7>(), device().audio.begin());
    device().setClock(all.subspan<33, 6>());
    std::ranges::copy(all.last<2>(), device().settings.begin() + 8);
    controller->contentController()->viewDidLoad();
    if (!showsDevice(*controller->window())) __builtin_trap();
    device().requests.clear();
    TestHost::take();
    return 0;
}
