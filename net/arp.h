// ARP for IPv4 over Ethernet.
#pragma once

#include <array>
#include <cstdint>

namespace net {

// The fields, by byte from the start of the Ethernet frame.
inline constexpr std::uint32_t kArpOperation = 20;
inline constexpr std::uint32_t kArpSenderMac = 22;
inline constexpr std::uint32_t kArpSenderIp = 28;
inline constexpr std::uint32_t kArpTargetMac = 32;
inline constexpr std::uint32_t kArpTargetIp = 38;

// Operations as their two bytes on the wire.
inline constexpr std::array<std::uint8_t, 2> kArpRequest{0x00, 0x01};
inline constexpr std::array<std::uint8_t, 2> kArpReply{0x00, 0x02};

}  // namespace net
