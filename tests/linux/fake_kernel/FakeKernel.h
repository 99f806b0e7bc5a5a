#pragma once

#include "SimulatedDevice.h"

#include <umockdev.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <linux/usbdevice_fs.h>
#include <linux/uvcvideo.h>

/// A device on the fake kernel's bus, and what of it can be seen.
struct FakePlug {
    unsigned bus = 1;
    unsigned address = 2;
    std::string name = "1-1"; ///< bus and chain of ports, as sysfs writes them
    std::uint16_t vendor = TAVRO_USB_VENDOR_ID;
    std::uint8_t interfaceClass = 0x0E;
    std::uint8_t interfaceProtocol = 0; ///< 1 is UVC 1.5's
    std::uint8_t videoControlInterface = 0;
    std::string driver = {}; ///< bound to the VideoControl interface, empty: none
    int captureNode = -1;    ///< N of /dev/videoN, which is a second node's neighbour; -1: none
    std::optional<std::vector<std::uint8_t>> descriptors = {}; ///< instead of good ones
};

/// Stands in for sysfs, usbfs and the UVC driver, under the real libudev and libusb. It answers as a real kernel
/// does, records all calls, and refuses those that the program must never make.
class FakeKernel {
public:
    FakeKernel();
    ~FakeKernel();
    FakeKernel(const FakeKernel&) = delete;
    FakeKernel& operator=(const FakeKernel&) = delete;

    void plug(const FakePlug& plug);
    /// Takes everything off the bus.
    void unplug();
    /// A driver takes the interface of a device that is plugged in.
    void bind(const FakePlug& plug);
    /// The driver of the device that was plugged in last lets go of it.
    void unbind();
    /// From now on the user has no rights on a device node.
    void forbid(const std::string& node);
    /// Where a device node really is.
    [[nodiscard]] std::string pathOf(const std::string& node) const;

    std::shared_ptr<SimulatedDevice> device = std::make_shared<SimulatedDevice>();
    std::vector<std::string> calls;     ///< what was called: "claim 0", "transfer", "release 0", "query"
    std::vector<std::string> forbidden; ///< calls that no driver or other program would survive

private:
    struct Urb {
        usbdevfs_urb* urb;
        bool done;
    };
    struct Answer {
        long result;
        int error;
    };

    static gboolean handle(UMockdevIoctlBase* base, UMockdevIoctlClient* client, gpointer self);
    [[nodiscard]] Answer call(unsigned long request, void* argument);
    [[nodiscard]] Answer control(const usbdevfs_ctrltransfer& transfer);
    [[nodiscard]] Answer claim(unsigned interface);
    [[nodiscard]] Answer release(unsigned interface);
    [[nodiscard]] Answer submit(usbdevfs_urb& urb);
    [[nodiscard]] Answer reap(void** argument);
    [[nodiscard]] Answer discard(const usbdevfs_urb* urb);
    [[nodiscard]] Answer query(uvc_xu_control_query& query);
    /// Gives the path at which the node has to be made.
    std::string addNode(const std::string& node);
    /// Of the last one that was added.
    void removeNode();
    void removeDevice();

    UMockdevTestbed* m_testbed;
    UMockdevIoctlBase* m_handler;
    std::vector<std::string> m_devices; ///< sysfs paths, parents first
    std::vector<std::string> m_nodes;
    std::string m_interface; ///< sysfs path of the one that was plugged in last
    std::string m_driver;
    std::optional<unsigned> m_claimed;
    std::vector<Urb> m_urbs;
};
