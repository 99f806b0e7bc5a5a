#pragma once

#include "CaptureDescriptors.h"
#include "SimulatedDevice.h"

#include <umockdev.h>

#include <map>
#include <optional>
#include <string>

#include <linux/usbdevice_fs.h>
#include <linux/uvcvideo.h>
#include <sys/stat.h>

/// A device on the fake kernel's bus, and what of it can be seen.
struct FakePlug {
    std::string name = "1-1"; ///< bus and chain of ports, as sysfs writes them, below those of its hub: "1-2/1-2.3"
    unsigned address = 2;
    std::uint16_t vendor = TAVRO_USB_VENDOR_ID;
    std::uint8_t interfaceClass = Uvc::kVideoClass;
    std::uint8_t interfaceSubClass = Uvc::kVideoControlSubClass;
    std::uint8_t videoControlInterface = 0;
    std::string driver = {};               ///< bound to the VideoControl interface, empty: none
    int captureNode = -1;                  ///< N of /dev/videoN, which is a metadata node's neighbour; -1: none
    std::optional<Bytes> descriptors = {}; ///< instead of good ones
};

/// Stands in for sysfs, usbfs and the UVC driver, under the real libudev and libusb. It answers as a real kernel
/// does, records all calls, and refuses those that the program must never make. There is one at a time.
class FakeKernel {
public:
    FakeKernel();
    ~FakeKernel();
    FakeKernel& operator=(FakeKernel&&) = delete; // nor can it be copied

    void plug(const FakePlug& plug);
    /// The device remains and its interfaces are made anew, as when it is authorized again.
    void configureAnew(const FakePlug& plug);
    /// Takes everything off the bus.
    void unplug();
    /// The driver of the device that was plugged in last lets go of it, and another one takes it. The nodes remain,
    /// as if other devices had got the names.
    void bind(const FakePlug& plug);

    std::shared_ptr<SimulatedDevice> device = std::make_shared<SimulatedDevice>();
    std::map<std::string, dev_t> nodes; ///< with the numbers that sysfs says
    int openError = 0;                  ///< why no node can be opened, 0: they can
    mode_t nodeKind = S_IFCHR;          ///< of whatever has the nodes' names
    dev_t numberShift = 0;              ///< of the nodes, from those
    std::vector<std::string> calls;     ///< "claim 0", "transfer", "release 0", "query /dev/video4"
    std::vector<std::string> forbidden; ///< calls that no driver or other program would survive

private:
    /// As in the kernel, a negative result is an error number.
    [[nodiscard]] long call(const std::string& node, unsigned long request, void* argument);
    [[nodiscard]] long submit(usbdevfs_urb& urb);
    [[nodiscard]] long query(const std::string& node, uvc_xu_control_query& query);
    void addNode(const std::string& node, dev_t number);
    void addInterface(const FakePlug& plug);

    UMockdevTestbed* m_testbed = umockdev_testbed_new();
    UMockdevIoctlBase* m_handler = umockdev_ioctl_base_new();
    std::string m_interface;           ///< sysfs path of the one that was plugged in last
    std::string m_driver;              ///< of that interface
    std::vector<std::string> m_videos; ///< sysfs paths of that driver's nodes
    std::optional<unsigned> m_claimed;
    usbdevfs_urb* m_done = nullptr; ///< the transfer that can be reaped
};
