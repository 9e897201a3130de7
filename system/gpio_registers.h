#pragma once

#include "core/register_map.h"

namespace monitor {

// One bit per pin in each.
inline constexpr Reg8 kGpioDirection{0x220, "GPIO_DIRECTION", "direction of the pins"};
inline constexpr Reg8 kGpioData{0x221, "GPIO_DATA", "levels of the pins"};
inline constexpr Reg8 kGpioStatus{0x222, "GPIO_STATUS", "interrupt status"};
inline constexpr Reg8 kGpioSetting{0x223, "GPIO_SETTING", "setting"};
inline constexpr Reg8 kGpioEnable{0x224, "GPIO_ENABLE", "interrupt enable"};
inline constexpr Reg8 kGpioTrigger{0x225, "GPIO_TRIGGER", "interrupt trigger"};

inline constexpr RegisterRow kGpioRegisters[] = {
    kGpioDirection, kGpioData, kGpioStatus, kGpioSetting, kGpioEnable, kGpioTrigger,
};

}  // namespace monitor
