#pragma once

#include <libusb.h>

#include <memory>

/// The computer's USB devices as libusb lists them. Shared by all objects of one look at the bus; the next
/// look makes its own, so that it sees what is plugged in then, also where no udev daemon runs.
using LibusbContext = std::shared_ptr<libusb_context>;
using LibusbDevice = std::shared_ptr<libusb_device>;

struct LibusbClose {
    void operator()(libusb_device_handle* handle) const { libusb_close(handle); }
};
using LibusbHandle = std::unique_ptr<libusb_device_handle, LibusbClose>;
