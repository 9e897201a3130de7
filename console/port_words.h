// The words of a command line for ports.
#pragma once

#include "console/parse.h"
#include "core/port_id.h"

namespace monitor {

/// The word for a port; its value is the port's code.
[[nodiscard]] constexpr Keyword PortWord(PortId port) { return {WordOf(port), CodeOf(port)}; }

/// The words for all four ports, in order of code.
inline constexpr std::array<Keyword, 4> kPortWords{PortWord(PortId::kWan), PortWord(PortId::kLan),
                                                   PortWord(PortId::kDmz), PortWord(PortId::kCpu)};

/// The words for the three ports with a MAC.
inline constexpr std::array<Keyword, 3> kMacPortWords{
    PortWord(PortId::kWan), PortWord(PortId::kLan), PortWord(PortId::kDmz)};

}  // namespace monitor
