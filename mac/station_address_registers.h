#pragma once

#include "core/register_map.h"

namespace monitor {

inline constexpr RegBytes<6> kCpuMac{0x400, "CPU_MAC", "CPU station address, first octet first"};
inline constexpr Reg32 kWanIp{0x410, "WAN_IP", "WAN port address"};
inline constexpr Reg32 kLanIp{0x418, "LAN_IP", "LAN port address"};
inline constexpr Reg32 kDmzIp{0x41C, "DMZ_IP", "DMZ port address"};
inline constexpr RegBytes<6> kWanMac{0x420, "WAN_MAC", "WAN station address, first octet first"};

inline constexpr RegisterRow kStationAddressRegisters[] = {
    {kCpuMac, ValueKind::kMacAddress}, {kWanIp, ValueKind::kIpv4Address},
    {kLanIp, ValueKind::kIpv4Address}, {kDmzIp, ValueKind::kIpv4Address},
    {kWanMac, ValueKind::kMacAddress},
};

}  // namespace monitor
