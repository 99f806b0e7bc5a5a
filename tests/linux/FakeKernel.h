#pragma once

#include <umockdev.h> // before Qt, which defines some of its names as keywords

#include "CaptureDescriptors.h"
#include "SimulatedDevice.h"
#include "WireText.h"

#include <QString>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>
#include <utility>

#include <fcntl.h>
#include <linux/usbdevice_fs.h>
#include <linux/uvcvideo.h>
#include <sys/stat.h>

/// A device on the fake kernel's bus, as sysfs shows it. Its interface 0 is for VideoControl.
struct FakePlug {
    std::string name = "1-1"; ///< bus and ports, as in sysfs; the bus is 1
    unsigned address = 2;     ///< 1 to 9, no other device may have it
    std::uint16_t vendor = TAVRO_USB_VENDOR_ID;
    std::string driver = {}; ///< bound to the interface, empty: none
    int captureNode = -1;    ///< N of /dev/videoN, the metadata node has N+1; -1: none
};

/// Emulates sysfs, usbfs and the UVC driver by umockdev, under the real libudev and libusb: run
/// the program by umockdev-wrapper. Answers as a real kernel does and records calls. A call that
/// would disturb the driver or other programs fails the test. Only one can exist.
class FakeKernel {
public:
    FakeKernel() {
        running = this;
        device.onRequest = [this](const auto& request) { calls.push_back(wireText(request)); };
        g_signal_connect(m_handler, "handle-ioctl", G_CALLBACK(handle), this);
        unplug();
    }
    ~FakeKernel() {
        g_object_unref(m_handler);
        g_object_unref(testbed);
    }
    FakeKernel& operator=(FakeKernel&&) = delete;

    void plug(const FakePlug& plug) {
        m_interface = "/sys/devices/" + plug.name + "/" + plug.name + ":1.0";
        const CaptureIdentity identity{device.vendorID, device.productID, 0};
        Bytes descriptors = deviceDescriptor(identity);
        append(descriptors, configurationDescriptor(identity));
        add(QString("P: /devices/%1\nN: bus/usb/001/00%2=%3\nE: SUBSYSTEM=usb\n"
                    "E: DEVTYPE=usb_device\nE: DEVNAME=/dev/bus/usb/001/00%2\n"
                    "E: MAJOR=189\nE: MINOR=%2\nA: dev=189:%2\n"
                    "A: busnum=1\nA: devnum=%2\nA: idVendor=%4\nA: idProduct=%5\n\n"
                    "P: /devices/%1/%1:1.0\nE: SUBSYSTEM=usb\nA: bInterfaceNumber=00\n"
                    "A: bInterfaceClass=0e\nA: bInterfaceSubClass=01\n")
                .arg(plug.name.c_str())
                .arg(plug.address)
                .arg(QByteArrayView(descriptors).toByteArray().toHex().toUpper().data())
                .arg(plug.vendor, 0, 16)
                .arg(device.productID, 0, 16));
        bind(plug);
    }

    /// Unplugs all devices.
    void unplug() {
        g_clear_object(&testbed);
        testbed = umockdev_testbed_new();
        // No other node may be used.
        for (const char* node : {"/dev/bus/usb/001/002", "/dev/video8", "/dev/video9"})
            umockdev_testbed_attach_ioctl(testbed, node, m_handler, nullptr);
    }

    /// Unbinds the driver of the device that was plugged in last and binds another one.
    void bind(const FakePlug& plug) {
        std::filesystem::remove(std::getenv("UMOCKDEV_DIR") + m_interface + "/driver");
        for (const auto& entry : std::filesystem::directory_iterator(m_interface))
            if (entry.path().filename().string().starts_with("video"))
                umockdev_testbed_remove_device(testbed, entry.path().c_str());
        if (!plug.driver.empty())
            umockdev_testbed_set_attribute_link(
                testbed, m_interface.c_str(), "driver", ("../drivers/" + plug.driver).c_str());
        for (int index = 0; plug.captureNode >= 0 && index < 2; ++index) // 1 has metadata
            add(QString("P: %1/video%2\nN: video%2=00\nE: SUBSYSTEM=video4linux\n"
                        "E: DEVNAME=/dev/video%2\nE: MAJOR=81\nE: MINOR=%2\n"
                        "A: dev=81:%2\nA: index=%3\n")
                    .arg(m_interface.c_str() + 4)
                    .arg(plug.captureNode + index)
                    .arg(index));
    }

    static inline FakeKernel* running = nullptr; ///< the only one
    UMockdevTestbed* testbed = nullptr;          ///< for changes of single attributes
    SimulatedDevice device;                      ///< answers all requests
    int openError = 0;                           ///< of opening any node, 0: success
    dev_t numberShift = 0;                       ///< fstat's number of a node minus that in sysfs
    /// "claim 0", "release 0", "query /dev/video9", and requests as `wireText` writes them
    std::vector<std::string> calls;

private:
    /// Adds a folder to sysfs, as umockdev describes it.
    void add(const QString& folder) { umockdev_testbed_add_from_string(testbed, qPrintable(folder), nullptr); }

    /// Runs in the testbed's thread while this process waits in ioctl, so that pointers are valid.
    static gboolean handle(UMockdevIoctlBase* /*base*/, UMockdevIoctlClient* client, FakeKernel* self) {
        void* const argument = *reinterpret_cast<void**>(umockdev_ioctl_client_get_arg(client)->data);
        const long result =
            self->call(umockdev_ioctl_client_get_devnode(client), umockdev_ioctl_client_get_request(client), argument);
        umockdev_ioctl_client_complete(client, std::max(result, -1L), static_cast<int>(-std::min(result, 0L)));
        return TRUE;
    }

    /// As in the kernel, a negative result is an error number.
    long call(const std::string& node, unsigned long request, void* argument) {
        switch (request) {
        case USBDEVFS_GET_CAPABILITIES:
        case USBDEVFS_CONNECTINFO:
        case USBDEVFS_GET_SPEED: return 0; // nothing depends on it
        case USBDEVFS_CONTROL:             // libusb asks for the active configuration only
            *static_cast<std::uint8_t*>(static_cast<usbdevfs_ctrltransfer*>(argument)->data) = kConfigurationValue;
            return 1;
        case USBDEVFS_CLAIMINTERFACE:
            calls.push_back("claim " + std::to_string(*static_cast<unsigned*>(argument)));
            return std::filesystem::is_symlink(m_interface + "/driver") ? -EBUSY : 0;
        case USBDEVFS_RELEASEINTERFACE:
            calls.push_back("release " + std::to_string(*static_cast<unsigned*>(argument)));
            return 0;
        case USBDEVFS_SUBMITURB: return submit(*static_cast<usbdevfs_urb*>(argument));
        case USBDEVFS_REAPURBNDELAY:
            *static_cast<usbdevfs_urb**>(argument) = m_done;
            return std::exchange(m_done, nullptr) ? 0 : -EAGAIN;
        case UVCIOC_CTRL_QUERY: return query(node, *static_cast<uvc_xu_control_query*>(argument));
        default: // detaching a driver, resetting the device, and all others
            ADD_FAILURE() << "ioctl " << request;
            return -ENOTTY;
        }
    }

    long submit(usbdevfs_urb& urb) {
        auto* const bytes = static_cast<std::uint8_t*>(urb.buffer);
        UsbControlRequest request = Uvc::requestOf(std::span<std::uint8_t, 8>(bytes, 8), bytes + 8);
        const UsbResult result = device.control(request);
        urb.status = result == UsbCode::Stall ? -EPIPE : 0;
        urb.actual_length = static_cast<int>(request.wLenDone);
        m_done = &urb;
        return 0;
    }

    long query(const std::string& node, const uvc_xu_control_query& query) {
        calls.push_back("query " + node);
        const auto type = static_cast<std::uint8_t>(Uvc::kSetToInterface | (query.query & kUsbDeviceToHost));
        const auto size = static_cast<std::uint8_t>(query.size);
        const Uvc::SetupPacket packet{type, query.query, 0, query.selector, 0, query.unit, size, 0};
        UsbControlRequest request = Uvc::requestOf(packet, query.data);
        const UsbResult result = device.control(request);
        if (result == UsbCode::Success) return 0;
        return result == UsbCode::InputOutput ? request.wLenDone : -EPIPE; // a short answer, a refusal
    }

    UMockdevIoctlBase* m_handler = umockdev_ioctl_base_new();
    std::string m_interface;        ///< sysfs path, of the device that was plugged in last
    usbdevfs_urb* m_done = nullptr; ///< the transfer that can be reaped
};
