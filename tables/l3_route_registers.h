#pragma once

#include "core/engine_fields.h"
#include "core/value_names.h"

namespace monitor {

inline constexpr Reg32 kRouteIp{0x600, "L3_IP", "destination address"};
inline constexpr Reg8 kRouteMask{0x604, "L3_MASK", "mask length"};
inline constexpr Reg8 kRouteEncapsulation{0x605, "L3_ENCAPSULATION", "how frames leave"};
inline constexpr Field kRouteSession{2, 1, "session", "PPPoE session number"};
inline constexpr Field kRoutePppoe{0, 0, "pppoe", "encapsulation"};
inline constexpr Reg32 kRouteNextHop{0x608, "L3_NEXT_HOP", "next-hop address"};
inline constexpr Reg8 kRouteFlags{0x60C, "L3_FLAGS", "port and switches"};
inline constexpr Field kRouteWanMac{6, 6, "wan_mac", "WAN MAC switch"};
inline constexpr Field kRouteDirect{5, 5, "direct", "directly connected"};
inline constexpr Field kRouteValid{4, 4, "valid", "entry in use"};
inline constexpr Field kRoutePort{3, 0, "port", "outgoing port, one-hot"};
inline constexpr Reg8 kRouteCommand{0x60D, "L3_COMMAND", "engine command and status"};
inline constexpr Field kRouteCounterSelect{4, 4, "counter", "the step works on the counter"};
inline constexpr Reg8 kRouteIndex{0x60E, "L3_INDEX", "slot that a step works on"};
inline constexpr Reg32 kRouteCounter{0x610, "L3_COUNTER", "counter of the slot"};
inline constexpr RegBytes<8> kRouteOverflow{0x614, "L3_OVERFLOW",
                                            "counter overflow, slot 0x3F first; 1 clears"};

inline constexpr RegisterRow kRouteRegisters[] = {
    {kRouteIp, ValueKind::kIpv4Address},
    {kRouteMask, ValueKind::kMaskLength},
    {kRouteEncapsulation, {{kRouteSession, ValueKind::kIndex}, {kRoutePppoe, kEncapsulationNames}}},
    {kRouteNextHop, ValueKind::kIpv4Address},
    {kRouteFlags, {kRouteWanMac, kRouteDirect, kRouteValid, {kRoutePort, kOnePort}}},
    {kRouteCommand,
     {kRouteCounterSelect,
      {kEngineWrite, kDirectionNames},
      kEngineStart,
      kEngineWriteReady,
      kEngineReadReady}},
    {kRouteIndex, ValueKind::kIndex},
    {kRouteCounter, ValueKind::kCounter},
    {kRouteOverflow, ValueKind::kBits},
};

}  // namespace monitor
