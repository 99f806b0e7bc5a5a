// Start-up of the settings window on a device that reports arbitrary bytes.

#include "AppDelegate.h"
#include "ApplicationMain.h"
#include "TestHost.h"
#include "WindowDescription.h"

#include <QApplication>

#include <algorithm>
#include <span>

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
    TestHost::take();
    return 0;
}
