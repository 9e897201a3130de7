#pragma once

#include "core/value_names.h"

namespace monitor {

inline constexpr RegBytes<3> kMacControl{0x000, "MAC_CONTROL", "port control: WAN, LAN, DMZ"};
inline constexpr Field kMacQosMode{7, 6, "qos_mode", "QoS mode"};
inline constexpr Field kMacVlanAware{5, 5, "vlan_aware", "port knows VLAN tags"};
inline constexpr Field kMacAfc{4, 4, "afc", "with flow control: automatic"};
inline constexpr Field kMacLinkUp{3, 3, "link_up", "port is up"};
inline constexpr Field kMacSpeed100{2, 2, "speed_100", "speed"};
inline constexpr Field kMacFullDuplex{1, 1, "full_duplex", "duplex"};
inline constexpr Field kMacFlowControl{0, 0, "flow_control", "flow control enable"};

inline constexpr Reg8 kLoopback{0x003, "LOOPBACK", "loopback, two bits per port"};
inline constexpr Field kLoopbackDmz{5, 4, "dmz", "loopback of DMZ"};
inline constexpr Field kLoopbackLan{3, 2, "lan", "loopback of LAN"};
inline constexpr Field kLoopbackWan{1, 0, "wan", "loopback of WAN"};

inline constexpr Reg8 kInterfaceType{0x108, "INTERFACE_TYPE", "interfaces, two bits per port"};
inline constexpr Field kCpuQosMode{7, 6, "cpu_qos_mode", "QoS mode of the CPU port"};
inline constexpr Field kInterfaceDmz{5, 4, "dmz", "interface of DMZ"};
inline constexpr Field kInterfaceLan{3, 2, "lan", "interface of LAN"};
inline constexpr Field kInterfaceWan{1, 0, "wan", "interface of WAN"};

inline constexpr ValueName kLoopbackNames[] = {
    {0, "none", "none"},
    {1, "internal", "internal"},
    {2, "external", "external"},
};
inline constexpr ValueName kInterfaceNames[] = {
    {0, "serial", "serial"},
    {2, "mii", "MII"},
    {3, "rmii", "RMII"},
};

inline constexpr RegisterRow kPortConfigRegisters[] = {
    {kMacControl,
     {{kMacQosMode, kQosModeNames},
      kMacVlanAware,
      kMacAfc,
      kMacLinkUp,
      {kMacSpeed100, kSpeedNames},
      {kMacFullDuplex, kDuplexNames},
      kMacFlowControl}},
    {kLoopback,
     {{kLoopbackDmz, kLoopbackNames},
      {kLoopbackLan, kLoopbackNames},
      {kLoopbackWan, kLoopbackNames}}},
    {kInterfaceType,
     {{kCpuQosMode, kQosModeNames},
      {kInterfaceDmz, kInterfaceNames},
      {kInterfaceLan, kInterfaceNames},
      {kInterfaceWan, kInterfaceNames}}},
};

}  // namespace monitor
