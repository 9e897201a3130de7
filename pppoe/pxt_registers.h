#pragma once

#include "core/engine.h"
#include "core/register_map.h"

namespace monitor {

inline constexpr RegBytes<6> kPxtInternalMac{0xA20, "PXT_INTERNAL_MAC", "internal MAC address"};
inline constexpr RegBytes<6> kPxtExternalMac{0xA28, "PXT_EXTERNAL_MAC", "external MAC address"};
inline constexpr Reg16 kPxtInternalSession{0xA30, "PXT_INTERNAL_SESSION", "internal session ID"};
inline constexpr Reg16 kPxtExternalSession{0xA32, "PXT_EXTERNAL_SESSION", "external session ID"};
inline constexpr Reg16 kPxtInternalVlan{0xA34, "PXT_INTERNAL_VLAN", "internal VLAN ID"};
inline constexpr Reg16 kPxtExternalVlan{0xA36, "PXT_EXTERNAL_VLAN", "external VLAN ID"};
inline constexpr Reg8 kPxtSwitches{0xA38, "PXT_SWITCHES", "switches of both sides"};
inline constexpr Field kPxtExternalTag{6, 6, "external_tag", "external tag switch"};
inline constexpr Field kPxtExternalForce{5, 5, "external_force", "external force switch"};
inline constexpr Field kPxtExternalUsed{4, 4, "external_used", "external side in use"};
inline constexpr Field kPxtInternalTag{2, 2, "internal_tag", "internal tag switch"};
inline constexpr Field kPxtInternalForce{1, 1, "internal_force", "internal force switch"};
inline constexpr Field kPxtInternalUsed{0, 0, "internal_used", "internal side in use"};
inline constexpr Reg8 kPxtFlags{0xA39, "PXT_FLAGS", "port, index, valid"};
inline constexpr Field kPxtPort{7, 6, "port", "internal port: 2 DMZ, else LAN"};
inline constexpr Field kPxtIndex{5, 4, "index", "entry that a step works on"};
inline constexpr Field kPxtValid{0, 0, "valid", "entry in use"};
inline constexpr Reg8 kPxtCommand{0xA3A, "PXT_COMMAND", "engine command and status"};

inline constexpr RegisterRow kPxtRegisters[] = {
    kPxtInternalMac,
    kPxtExternalMac,
    kPxtInternalSession,
    kPxtExternalSession,
    kPxtInternalVlan,
    kPxtExternalVlan,
    {kPxtSwitches,
     {kPxtExternalTag, kPxtExternalForce, kPxtExternalUsed, kPxtInternalTag, kPxtInternalForce,
      kPxtInternalUsed}},
    {kPxtFlags, {kPxtPort, kPxtIndex, kPxtValid}},
    {kPxtCommand, {kEngineWrite, kEngineStart, kEngineWriteReady, kEngineReadReady}},
};

}  // namespace monitor
