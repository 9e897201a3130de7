#pragma once

#include "console/parse.h"
#include "core/port_id.h"

namespace monitor {

/// The words for all four ports, in order of code.
inline constexpr std::array<Keyword, 4> kPortWords{
    {{"WAN", kPortWan}, {"LAN", kPortLan}, {"DMZ", kPortDmz}, {"CPU", kPortCpu}}};

/// The words for the three ports with a MAC.
inline constexpr std::array<Keyword, 3> kMacPortWords{
    {{"WAN", kPortWan}, {"LAN", kPortLan}, {"DMZ", kPortDmz}}};

}  // namespace monitor
