#pragma once

#include "core/engine_fields.h"
#include "core/value_names.h"

namespace monitor {

inline constexpr Reg32 kMcastIp{0x61C, "MCAST_IP", "group address"};
inline constexpr Reg8 kMcastFlags{0x620, "MCAST_FLAGS", "member ports and valid bit"};
inline constexpr Field kMcastValid{4, 4, "valid", "entry in use"};
inline constexpr Field kMcastPorts{3, 0, "ports", "member ports"};
inline constexpr Reg8 kMcastCommand{0x621, "MCAST_COMMAND", "engine command and status"};
inline constexpr Field kMcastCounterSelect{4, 4, "counter", "the step works on the counter"};
inline constexpr Reg8 kMcastIndex{0x622, "MCAST_INDEX", "slot that a step works on"};
inline constexpr RegBytes<8> kMcastOverflow{0x624, "MCAST_OVERFLOW",
                                            "counter overflow, slot 0x3F first; 1 clears"};
inline constexpr Reg32 kMcastCounter{0x62C, "MCAST_COUNTER", "counter of the slot"};

inline constexpr RegisterRow kMcastRegisters[] = {
    {kMcastIp, ValueKind::kIpv4Address},
    {kMcastFlags, {kMcastValid, {kMcastPorts, kAnyPorts}}},
    {kMcastCommand,
     {kMcastCounterSelect,
      {kEngineWrite, kDirectionNames},
      kEngineStart,
      kEngineWriteReady,
      kEngineReadReady}},
    {kMcastIndex, ValueKind::kIndex},
    {kMcastOverflow, ValueKind::kBits},
    {kMcastCounter, ValueKind::kCounter},
};

}  // namespace monitor
