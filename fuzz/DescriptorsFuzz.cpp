// Descriptors from a device that means no good, as the real libusb and the Linux code read them.

#include "FakeKernel.h"
#include "UVCControl.h"

#include <array>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FakeKernel kernel;
    kernel.plug({.descriptors = std::vector(data, data + size)});
    UVCCameraControl control;
    std::array<std::uint8_t, 7> block{};
    if (!control.initWithVendorID(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID))
        __builtin_trap();
    (void)control.getDataFor(UVCRequest::GET_CUR, 7, 13, 3, block);
    kernel.unplug();
    kernel.device->requests.clear();
    kernel.calls.clear();
    return 0;
}
