// Ethernet II frames without their FCS.
#pragma once

#include <array>
#include <cstdint>

namespace net {

/// Six bytes in transmission order.
using MacAddress = std::array<std::uint8_t, 6>;

inline constexpr MacAddress kBroadcastMac{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

/// True for multicast addresses, the broadcast address among them.
[[nodiscard]] constexpr bool IsGroup(const MacAddress& mac) { return (mac[0] & 0x01) != 0; }

// The header, by byte from the start of the frame.
inline constexpr std::uint32_t kDestinationMac = 0;
inline constexpr std::uint32_t kSourceMac = 6;
inline constexpr std::uint32_t kEtherType = 12;

/// The EtherType of ARP as its two bytes on the wire.
inline constexpr std::array<std::uint8_t, 2> kEtherTypeArp{0x08, 0x06};

}  // namespace net
