// The one control byte in which several tables keep their filter switch; each owner changes only
// its own bit.
#pragma once

#include "core/register_map.h"

namespace monitor {

inline constexpr Reg8 kFilterControl{0x105, "FILTER_CONTROL", "filter switches of the tables"};
inline constexpr Field kFilterArp{7, 7, "arp", "ARP filter"};
inline constexpr Field kFilterL3{6, 6, "l3", "L3 route filter"};
inline constexpr Field kFilterClassifier{5, 5, "classifier", "classifier filter"};
inline constexpr Field kFilterNat{4, 4, "nat", "NAT filter"};
inline constexpr Field kFloodMulticast{3, 3, "mcast_flood", "multicast flood control"};
inline constexpr Field kFilterWanToWan{2, 2, "wan_to_wan", "filter packets from WAN to WAN"};

inline constexpr RegisterRow kFilterRegisters[] = {
    {kFilterControl,
     {kFilterArp, kFilterL3, kFilterClassifier, kFilterNat, kFloodMulticast, kFilterWanToWan}},
};

}  // namespace monitor
