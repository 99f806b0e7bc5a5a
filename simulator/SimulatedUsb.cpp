#include "SimulatedBus.h"

UsbBus& usbBus() {
    return SimulatedBus::instance();
}
