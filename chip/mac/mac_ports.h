// The ports of the chip that have a MAC.
#pragma once

#include <array>

namespace chip {

/// By number: 0 WAN, 1 LAN, 2 DMZ; the names are those of saved states and captures.
inline constexpr std::array kMacPortNames{"wan", "lan", "dmz"};
inline constexpr unsigned kMacPorts = kMacPortNames.size();

}  // namespace chip
