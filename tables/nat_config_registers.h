#pragma once

#include "core/register_map.h"

namespace monitor {

inline constexpr Reg32 kNatIp{0x510, "NAT_IP", "public address"};
inline constexpr Reg8 kNatPortPrefix{0x515, "NAT_PORT_PREFIX", "prefix of translated ports"};
inline constexpr Reg8 kNatFlags{0x51D, "NAT_FLAGS", "switches of the engine"};
inline constexpr Field kNatDisableAgeOut{5, 5, "disable_age_out", "entries do not age out"};
inline constexpr Field kNatAutoUdp{4, 4, "auto_udp", "the engine adds UDP entries by itself"};
inline constexpr Field kNatAutoTcp{3, 3, "auto_tcp", "the engine adds TCP entries by itself"};
inline constexpr Field kNatDmzToWan{2, 2, "dmz_to_wan", "translate DMZ to WAN"};
inline constexpr Field kNatLanToWan{0, 0, "lan_to_wan", "translate LAN to WAN"};
inline constexpr Reg16 kNatDefaultAge{0x51E, "NAT_DEFAULT_AGE", "age-out time in 0.1 s"};
inline constexpr Reg16 kNatFinAge{0x520, "NAT_FIN_AGE", "age-out time after FIN in 0.1 s"};

inline constexpr RegisterRow kNatConfigRegisters[] = {
    {kNatIp, ValueKind::kIpv4Address},
    kNatPortPrefix,
    {kNatFlags, {kNatDisableAgeOut, kNatAutoUdp, kNatAutoTcp, kNatDmzToWan, kNatLanToWan}},
    {kNatDefaultAge, ValueKind::kAge},
    {kNatFinAge, ValueKind::kAge},
};

}  // namespace monitor
