#include "ListedDescriptors.h"

#include "UdevSearch.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <span>

using namespace udevSearch;

namespace {

// USB 2.0, 9.6.1 and 9.6.3
constexpr std::size_t kDeviceLength = 18;
constexpr std::size_t kConfigurationCount = 17; // where the device descriptor has it
constexpr std::uint8_t kConfiguration = 2;
constexpr std::uint8_t kConfigurationLength = 9;

bool canBeRead(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < kDeviceLength || bytes[kConfigurationCount] < 2)
        return true; // nothing to look for
    for (auto rest = bytes.subspan(kDeviceLength); !rest.empty(); rest = rest.subspan(rest[0])) {
        const bool whole = rest.size() >= 2 && rest[0] >= 2 && rest[0] <= rest.size();
        if (!whole || (rest[1] == kConfiguration && rest[0] != kConfigurationLength))
            return false;
    }
    return true;
}

} // namespace

bool listedDescriptorsCanBeRead() {
    const Udev context(udev_new());
    if (!context)
        return true; // and libusb finds no devices either
    const auto folders = Search(context.get(), "usb").folders();
    return std::ranges::all_of(folders, [](const std::string& folder) {
        std::ifstream file(folder + "/descriptors", std::ios::binary); // interfaces have none
        const std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
        return canBeRead(bytes);
    });
}
