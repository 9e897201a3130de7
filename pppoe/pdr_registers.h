#pragma once

#include "core/engine.h"
#include "core/register_map.h"

namespace monitor {

inline constexpr Reg32 kPdrIp{0xA10, "PDR_IP", "address"};
inline constexpr Reg8 kPdrIndex{0xA14, "PDR_INDEX", "entry that a step works on"};
inline constexpr Reg8 kPdrFlags{0xA15, "PDR_FLAGS", "how the address is reached"};
inline constexpr Field kPdrSession{3, 2, "session", "number of the PPPoE session"};
inline constexpr Field kPdrPppoe{1, 1, "pppoe", "1 PPPoE, 0 IPoE"};
inline constexpr Field kPdrValid{0, 0, "valid", "entry in use"};
inline constexpr Reg8 kPdrCommand{0xA16, "PDR_COMMAND", "engine command and status"};

inline constexpr RegisterRow kPdrRegisters[] = {
    kPdrIp,
    kPdrIndex,
    {kPdrFlags, {kPdrSession, kPdrPppoe, kPdrValid}},
    {kPdrCommand, {kEngineWrite, kEngineStart, kEngineWriteReady, kEngineReadReady}},
};

}  // namespace monitor
