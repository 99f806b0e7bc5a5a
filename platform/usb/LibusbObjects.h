#pragma once

#include <libusb.h>

#include <memory>

struct LibusbExit {
    void operator()(libusb_context* context) const { libusb_exit(context); }
};
using LibusbContext = std::unique_ptr<libusb_context, LibusbExit>;

struct LibusbClose {
    void operator()(libusb_device_handle* handle) const { libusb_close(handle); }
};
using LibusbHandle = std::unique_ptr<libusb_device_handle, LibusbClose>;
