// Blocks with any bytes in them, shown in the settings window by start-up: a device may report anything.

#include "AppDelegate.h"
#include "ApplicationMain.h"
#include "SimulatedHost.h"
#include "ViewController.h"
#include "windows/WindowDescription.h"

#include <QApplication>
#include <QRadioButton>

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
    SimulatedHost::reset();
    static AppDelegate delegate;
    static auto controller =
        WindowDescription(QStringLiteral("Main"))
            .instantiateWindowController(QStringLiteral("Settings Window Controller"), &delegate);
    controller->window()->show();
    return *controller;
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
    controller.window()->grab();
    const bool on =
        controller.window()->findChild<QRadioButton*>(QStringLiteral("HdcpOnButton"))->isChecked();
    if (on != (levels[1] == 1))
        __builtin_trap();
    device().requests.clear();
    SimulatedHost::take();
    return 0;
}
