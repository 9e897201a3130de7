// Names of register values that several blocks share.
#pragma once

#include "core/port_id.h"
#include "core/register_map.h"

namespace monitor {

[[nodiscard]] consteval ValueName NamedPort(PortId port) {
  return {CodeOf(port), NameOf(port), WordOf(port)};
}

inline constexpr ValueName kPortCodeNames[] = {NamedPort(PortId::kWan), NamedPort(PortId::kLan),
                                               NamedPort(PortId::kDmz), NamedPort(PortId::kCpu)};
inline constexpr ValueType kOnePort{ValueKind::kPort, kPortCodeNames};
inline constexpr ValueType kAnyPorts{ValueKind::kPortSet, kPortCodeNames};

inline constexpr ValueName kDirectionNames[] = {{0, "read", "read"}, {1, "write", "write"}};

inline constexpr ValueName kEncapsulationNames[] = {{0, "ipoe", "IPoE"}, {1, "pppoe", "PPPoE"}};

inline constexpr ValueName kPriorityNames[] = {{0, "low", "low"}, {1, "high", "high"}};

inline constexpr ValueName kSpeedNames[] = {
    {0, "mbps10", "10 Mbit/s"},
    {1, "mbps100", "100 Mbit/s"},
};

inline constexpr ValueName kDuplexNames[] = {
    {0, "half", "half duplex"},
    {1, "full", "full duplex"},
};

inline constexpr ValueName kQosModeNames[] = {{0, "mode1", "MODE1"}, {1, "mode2", "MODE2"}};

}  // namespace monitor
