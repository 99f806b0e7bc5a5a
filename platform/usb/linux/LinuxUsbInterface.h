#pragma once

#include "ControlTransport.h"
#include "Sysfs.h"

#include <memory>
#include <string>
#include <utility>

#include <sys/types.h>

/// A plugged-in device, as sysfs shows it.
struct PluggedDevice {
    std::shared_ptr<const SysfsFolder> folder; ///< exists as long as it is plugged in
    std::string path;                          ///< of the folder
    std::string name;                          ///< bus and chain of ports: "1-2.3"; of a root hub "usb1"
    std::string node;                          ///< in usbfs
    dev_t number = 0;                          ///< of the node
    unsigned bus = 0;                          ///< from 1
};

/// One interface of a device of this computer. The device's node is open during a request only, and after a failed one
/// until the close: an open node keeps the device from suspending, the driver from being unloaded and the node's name
/// from being used again after a re-plug.
///
/// The transport is selected at each request: through the kernel's driver if that is bound to the interface and sends
/// exactly our packet, directly if none is bound. The driver is never detached: that would end a recording. After a
/// re-plug, a new authorization or a change of configuration every request fails with `NoDevice`.
class LinuxUsbInterface : public UsbInterface {
public:
    /// `path` is the interface's folder in sysfs, `number` the one in its descriptor.
    LinuxUsbInterface(PluggedDevice device, std::string path, std::uint8_t number)
        : m_device(std::move(device)), m_path(std::move(path)), m_folder(m_path), m_number(number) {}

    UsbResult GetInterfaceNumber(std::uint8_t& number) override;
    UsbResult ControlRequest(UsbControlRequest& request) override;
    UsbResult USBInterfaceClose() override;

private:
    /// The node of the kernel's UVC driver for the video of the interface.
    struct CaptureNode {
        std::string path;   ///< empty: none
        dev_t number = 0;   ///< valid as long as the folder exists
        SysfsFolder folder; ///< exists until the device is unplugged or the driver unbound
    };
    [[nodiscard]] CaptureNode findCaptureNode() const;

    /// Whether this interface still exists.
    [[nodiscard]] bool exists() const;
    /// Each leaves its node open if the result is success.
    [[nodiscard]] UsbResult selectTransport();
    [[nodiscard]] UsbResult openCaptureNode();
    [[nodiscard]] UsbResult openUsbNode();
    [[nodiscard]] UsbResult openNode(const std::string& path, dev_t number, const SysfsFolder& owner);

    PluggedDevice m_device;
    std::string m_path;
    SysfsFolder m_folder; ///< of m_path
    std::uint8_t m_number;
    CaptureNode m_captureNode; ///< found by an earlier request
    UniqueFd m_node;
    ControlTransport m_transport = nullptr;  ///< for the open node
    UsbResult m_notOpen = UsbCode::NotFound; ///< why no node is open
};
