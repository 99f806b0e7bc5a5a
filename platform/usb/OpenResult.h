#pragma once

#include "usb/Usb.h"

#include <cerrno>

/// Why a device node could not be opened.
inline UsbResult resultOfOpen(int error) {
    switch (error) {
    case EACCES:
    case EPERM:
        return UsbCode::Access;
    case ENOENT:
    case ENODEV:
    case ENXIO:
        return UsbCode::NoDevice;
    case EBUSY:
        return UsbCode::Busy;
    default:
        return UsbCode::InputOutput;
    }
}
