#pragma once

#include <cstdint>

namespace monitor {

/// One-bit codes of the ports; sets of ports are ORs of them.
enum PortId : std::uint8_t { kPortWan = 1, kPortLan = 2, kPortDmz = 4, kPortCpu = 8 };

/// True for the code of exactly one port.
[[nodiscard]] constexpr bool IsPort(unsigned code) {
  return code == kPortWan || code == kPortLan || code == kPortDmz || code == kPortCpu;
}

}  // namespace monitor
