#pragma once

#include "core/engine.h"
#include "core/register_map.h"

namespace monitor {

inline constexpr Reg32 kPstIp{0xA00, "PST_IP", "address of the session"};
inline constexpr Reg16 kPstSession{0xA04, "PST_SESSION", "PPPoE session ID"};
inline constexpr Reg16 kPstVlan{0xA06, "PST_VLAN", "VLAN ID"};
inline constexpr RegBytes<6> kPstServerMac{0xA08, "PST_SERVER_MAC", "MAC address of the server"};
inline constexpr Reg8 kPstFlags{0xA0E, "PST_FLAGS", "index and switches"};
inline constexpr Field kPstIndex{5, 4, "index", "entry that a step works on"};
inline constexpr Field kPstForce{3, 3, "force", "force switch"};
inline constexpr Field kPstTag{2, 2, "tag", "tag switch"};
inline constexpr Field kPstUsed{1, 1, "used", "session has been used"};
inline constexpr Field kPstValid{0, 0, "valid", "entry in use"};
inline constexpr Reg8 kPstCommand{0xA0F, "PST_COMMAND", "engine command and status"};

inline constexpr RegisterRow kPstRegisters[] = {
    kPstIp,
    kPstSession,
    kPstVlan,
    kPstServerMac,
    {kPstFlags, {kPstIndex, kPstForce, kPstTag, kPstUsed, kPstValid}},
    {kPstCommand, {kEngineWrite, kEngineStart, kEngineWriteReady, kEngineReadReady}},
};

}  // namespace monitor
