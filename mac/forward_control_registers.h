#pragma once

#include "core/register_map.h"

namespace monitor {

inline constexpr Reg16 kMtu{0x00C, "MTU", "longest PPPoE packet"};
inline constexpr Field kMtuBytes{11, 0, "bytes", "length; the bits above are written as 0"};

inline constexpr Reg8 kPppControl{0x104, "PPP_CONTROL", "PPP mode and handle release"};
inline constexpr Field kPppMode{3, 2, "ppp_mode", "PPP mode"};
inline constexpr Field kReleaseAgedOut{0, 0, "ageoutbm", "release aged-out handles"};

inline constexpr Reg8 kForwardAll{0x106, "FORWARD_ALL", "forwarding without NAT"};
inline constexpr Field kForwardAllIp{0, 0, "frdallip", "forward all IP packets"};

inline constexpr Reg8 kForwardFilter{0x107, "FORWARD_FILTER", "filters, mirrors, TTL"};
inline constexpr Field kFilterFragmentsNoNat{7, 7, "frgnn", "filter fragments, no-NAT mode"};
inline constexpr Field kMirrorLan{6, 6, "mirrlan", "mirror LAN to DMZ"};
inline constexpr Field kMirrorWan{5, 5, "mirrwan", "mirror WAN to DMZ"};
inline constexpr Field kKeepTtl{4, 4, "disttl", "do not decrement the TTL"};
inline constexpr Field kDropChecksumErrors{3, 3, "drop_checksum", "drop checksum errors"};
inline constexpr Field kFilterOverMtu{1, 1, "mtu", "filter PPPoE packets above the MTU"};
inline constexpr Field kFilterFragmentsNat{0, 0, "frg", "filter fragments, NAT mode"};

inline constexpr ValueName kPppModeNames[] = {
    {0, "proxy", "PPPoE proxy"},
    {1, "routing", "PPPoE routing"},
    {2, "ip", "IP routing"},
};

inline constexpr RegisterRow kForwardControlRegisters[] = {
    {kMtu, {{kMtuBytes, ValueKind::kLength}}},
    {kPppControl, {{kPppMode, kPppModeNames}, kReleaseAgedOut}},
    {kForwardAll, {kForwardAllIp}},
    {kForwardFilter,
     {kFilterFragmentsNoNat, kMirrorLan, kMirrorWan, kKeepTtl, kDropChecksumErrors, kFilterOverMtu,
      kFilterFragmentsNat}},
};

}  // namespace monitor
