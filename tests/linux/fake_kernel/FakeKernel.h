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

/// A device on the fake kernel's bus, as sysfs shows it.
struct FakePlug {
    std::string name = "1-1"; ///< bus and chain of ports, as sysfs writes them, below those of its hub: "1-2/1-2.3"
    unsigned address = 2;
    std::uint16_t vendor = TAVRO_USB_VENDOR_ID;
    std::uint8_t interfaceClass = Uvc::kVideoClass;
    std::uint8_t interfaceSubClass = Uvc::kVideoControlSubClass;
    std::uint8_t videoControlInterface = 0;
    std::string driver = {};               ///< bound to the VideoControl interface, empty: none
    int captureNode = -1;                  ///< N of /dev/videoN, the metadata node has N+1; -1: none
    std::optional<Bytes> descriptors = {}; ///< instead of valid ones
};

/// Emulates sysfs, usbfs and the UVC driver, under the real libudev and libusb. It answers as a real kernel does,
/// records all calls, and refuses those that the program must never make. Only one can exist.
class FakeKernel {
public:
    FakeKernel();
    ~FakeKernel();
    FakeKernel& operator=(FakeKernel&&) = delete;

    void plug(const FakePlug& plug);
    /// Unplugs all devices.
    void unplug();
    /// Replaces the interface of the device that was plugged in last, as another configuration does, or a new
    /// authorization.
    void configure(const FakePlug& plug);
    /// Unbinds the driver of that interface and binds another one. The nodes remain, as if other devices had got the
    /// names.
    void bind(const FakePlug& plug);

    std::shared_ptr<SimulatedDevice> device = std::make_shared<SimulatedDevice>();
    std::map<std::string, dev_t> nodes; ///< and their numbers in sysfs
    int openError = 0;                  ///< of opening any node, 0: success
    mode_t nodeKind = S_IFCHR;          ///< file type that fstat reports of a node
    dev_t numberShift = 0;              ///< fstat's number of a node minus that in sysfs
    std::vector<std::string> calls;     ///< "claim 0", "release 0", "query /dev/video4", and requests as `wireText`
    std::vector<std::string> forbidden; ///< calls that would disturb the driver or other programs

private:
    /// As in the kernel, a negative result is an error number.
    [[nodiscard]] long call(const std::string& node, unsigned long request, void* argument);
    [[nodiscard]] long submit(usbdevfs_urb& urb);
    [[nodiscard]] long query(const std::string& node, uvc_xu_control_query& query);
    void add(const std::string& folder); ///< to sysfs, as umockdev describes it
    void addNode(const std::string& node, dev_t number);

    UMockdevTestbed* m_testbed = umockdev_testbed_new();
    UMockdevIoctlBase* m_handler = umockdev_ioctl_base_new();
    std::string m_interface;           ///< sysfs path of the one that was plugged in last
    std::string m_driver;              ///< of that interface
    std::vector<std::string> m_videos; ///< sysfs paths of that driver's nodes
    std::optional<unsigned> m_claimed;
    usbdevfs_urb* m_done = nullptr; ///< the transfer that can be reaped
};
