#include "UvcBaseClass.h"

bool CUvcBaseControl::SetData2(std::span<std::uint8_t> data, int length, int selector, int unit) {
    return setCurrent(data, length, selector, unit);
}
