#pragma once

#include "core/register_map.h"

namespace monitor {

inline constexpr RegBytes<3> kMacControl{0x000, "MAC_CONTROL", "port control: WAN, LAN, DMZ"};
inline constexpr Field kMacQosMode{7, 6, "qos_mode", "0 MODE1, 1 MODE2"};
inline constexpr Field kMacVlanAware{5, 5, "vlan_aware", "port knows VLAN tags"};
inline constexpr Field kMacAfc{4, 4, "afc", "with flow control: automatic"};
inline constexpr Field kMacLinkUp{3, 3, "link_up", "port is up"};
inline constexpr Field kMacSpeed100{2, 2, "speed_100", "1 100 Mbit/s, 0 10 Mbit/s"};
inline constexpr Field kMacFullDuplex{1, 1, "full_duplex", "1 full, 0 half"};
inline constexpr Field kMacFlowControl{0, 0, "flow_control", "flow control enable"};

inline constexpr Reg8 kLoopback{0x003, "LOOPBACK", "two bits a port: internal, external"};
inline constexpr Field kLoopbackDmz{5, 4, "dmz", "low bit internal, high bit external"};
inline constexpr Field kLoopbackLan{3, 2, "lan", "low bit internal, high bit external"};
inline constexpr Field kLoopbackWan{1, 0, "wan", "low bit internal, high bit external"};

inline constexpr Reg8 kInterfaceType{0x108, "INTERFACE_TYPE", "two bits a port"};
inline constexpr Field kCpuQosMode{7, 6, "cpu_qos_mode", "CPU port: 0 MODE1, 1 MODE2"};
inline constexpr Field kInterfaceDmz{5, 4, "dmz", "0 serial, 2 MII, 3 RMII"};
inline constexpr Field kInterfaceLan{3, 2, "lan", "0 serial, 2 MII, 3 RMII"};
inline constexpr Field kInterfaceWan{1, 0, "wan", "0 serial, 2 MII, 3 RMII"};

inline constexpr RegisterRow kPortConfigRegisters[] = {
    {kMacControl,
     {kMacQosMode, kMacVlanAware, kMacAfc, kMacLinkUp, kMacSpeed100, kMacFullDuplex,
      kMacFlowControl}},
    {kLoopback, {kLoopbackDmz, kLoopbackLan, kLoopbackWan}},
    {kInterfaceType, {kCpuQosMode, kInterfaceDmz, kInterfaceLan, kInterfaceWan}},
};

}  // namespace monitor
