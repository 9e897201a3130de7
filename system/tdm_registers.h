#pragma once

#include "core/register_map.h"

namespace monitor {

inline constexpr Reg16 kTdmOnTimer{0x004, "TDM_ON_TIMER", "transmit on-timer"};
inline constexpr Reg8 kTdmInterface{0x006, "TDM_INTERFACE", "TDM enable"};
inline constexpr Field kTdmInterfaceOn{1, 0, "enable", "TDM enable"};
inline constexpr Reg16 kTdmOffTimer{0x008, "TDM_OFF_TIMER", "transmit off-timer"};
inline constexpr Reg8 kTdmControl{0x00A, "TDM_CONTROL", "switches"};
inline constexpr Field kTdmAutoOn{1, 1, "auto_on", "automatic on"};
inline constexpr Field kTdmEnabled{0, 0, "enabled", "TDM enabled"};

inline constexpr ValueName kTdmInterfaceNames[] = {
    {0, "disabled", "disabled"},
    {3, "enabled", "enabled"},
};

inline constexpr RegisterRow kTdmRegisters[] = {
    kTdmOnTimer,
    {kTdmInterface, {{kTdmInterfaceOn, kTdmInterfaceNames}}},
    kTdmOffTimer,
    {kTdmControl, {kTdmAutoOn, kTdmEnabled}},
};

}  // namespace monitor
