#pragma once

#include "console/parse.h"

namespace monitor {

/// One-bit codes of the ports; sets of ports are ORs of them.
enum PortId : std::uint8_t { kPortWan = 1, kPortLan = 2, kPortDmz = 4, kPortCpu = 8 };

/// The words for all four ports, in order of code.
inline constexpr std::array<Keyword, 4> kPortWords{
    {{"WAN", kPortWan}, {"LAN", kPortLan}, {"DMZ", kPortDmz}, {"CPU", kPortCpu}}};

/// The words for the three ports with a MAC.
inline constexpr std::array<Keyword, 3> kMacPortWords{
    {{"WAN", kPortWan}, {"LAN", kPortLan}, {"DMZ", kPortDmz}}};

/// True for the code of exactly one port.
[[nodiscard]] constexpr bool IsPort(unsigned code) {
  return code == kPortWan || code == kPortLan || code == kPortDmz || code == kPortCpu;
}

}  // namespace monitor
