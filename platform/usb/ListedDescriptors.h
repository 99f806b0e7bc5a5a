#pragma once

/// Whether libusb can be let at the descriptors of all devices that are plugged in. Up to version 1.0.26 it
/// looks for the configurations of a device in steps of what the descriptors say of their own lengths, and
/// starts in the wrong place after a configuration descriptor that is not 9 bytes long (USB 2.0, 9.6.3): a
/// device that means no good makes it look for ever.
[[nodiscard]] bool listedDescriptorsCanBeRead();
