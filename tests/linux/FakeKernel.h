#pragma once

#include "CaptureDescriptors.h"
#include "SimulatedDevice.h"

#include <umockdev.h>

#include <string>

#include <linux/usbdevice_fs.h>
#include <linux/uvcvideo.h>
#include <sys/stat.h>

class QString;

/// A device on the fake kernel's bus, as sysfs shows it. Its only interface is for VideoControl and has number 0.
struct FakePlug {
    std::string name = "1-1"; ///< bus and chain of ports, as sysfs writes them, below those of its hub: "1-2/1-2.3"
    unsigned address = 2;     ///< no other device may have it
    std::uint16_t vendor = TAVRO_USB_VENDOR_ID;
    std::string driver = {}; ///< bound to the interface, empty: none
    int captureNode = -1;    ///< N of /dev/videoN, the metadata node has N+1; -1: none
};

/// Emulates sysfs, usbfs and the UVC driver by umockdev, under the real libudev and libusb: run the program by
/// umockdev-wrapper, and link it with --wrap=open,--wrap=fstat. Answers as a real kernel does and records calls. Those
/// that would disturb the driver or other programs are failures of the test. Only one can exist.
class FakeKernel {
public:
    FakeKernel();
    ~FakeKernel();
    FakeKernel& operator=(FakeKernel&&) = delete;

    void plug(const FakePlug& plug);
    /// Unplugs all devices.
    void unplug();
    /// Unbinds the driver of the device that was plugged in last and binds another one.
    void bind(const FakePlug& plug);

    UMockdevTestbed* testbed = nullptr; ///< for changes of single attributes
    SimulatedDevice device;             ///< answers all requests
    Bytes descriptors;                  ///< that sysfs and usbfs show of the devices to plug in
    int openError = 0;                  ///< of opening any node, 0: success
    mode_t nodeKind = S_IFCHR;          ///< file type that fstat reports of a node
    dev_t numberShift = 0;              ///< fstat's number of a node minus that in sysfs
    std::vector<std::string> calls;     ///< "claim 0", "release 0", "query /dev/video9", and requests as `wireText`

private:
    /// As in the kernel, a negative result is an error number.
    [[nodiscard]] long call(const std::string& node, unsigned long request, void* argument);
    [[nodiscard]] long submit(usbdevfs_urb& urb);
    [[nodiscard]] long query(const std::string& node, const uvc_xu_control_query& query);
    void add(const QString& folder); ///< to sysfs, as umockdev describes it

    UMockdevIoctlBase* m_handler = umockdev_ioctl_base_new();
    std::string m_interface;        ///< sysfs path, of the device that was plugged in last
    bool m_claimed = false;         ///< by the program
    usbdevfs_urb* m_done = nullptr; ///< the transfer that can be reaped
};
