// Serves frames that the chip hands to the CPU, one per pass of the shell loop: answers ARP
// requests, and prints the frames or forwards them out of WAN.
#pragma once

#include <cstdint>

#include "core/driver_status.h"

namespace monitor {

// Receive modes.
inline constexpr std::uint8_t kReceiveManual = 0;   ///< Frames wait for `frame r`.
inline constexpr std::uint8_t kReceiveAuto = 1;     ///< Each frame is printed.
inline constexpr std::uint8_t kReceiveForward = 3;  ///< Each frame is sent out of WAN.

/// What the service does with received frames. Set by `frame r`.
extern std::uint16_t ReceiveMode;

/// Non-zero: the service answers ARP requests. Set by `arp auto`, never cleared.
extern std::uint16_t ArpAutoReply;

/// True when either setting asks for the service.
[[nodiscard]] bool PacketServiceOn();

/// Serves at most one received frame; false when none was waiting. Does nothing, and makes no bus
/// access, while neither setting asks for it.
bool PacketService();

/// Turns the ARP request at data address `frame`, received on `port` (a code), into the reply
/// of the CPU's MAC address, in place. A request for another address than the port's is answered
/// too, with its IP addresses where they were. kRefused, with the frame untouched, when it is
/// not an ARP request or the port has no IP address.
[[nodiscard]] DriverStatus BuildArpReply(std::uint8_t port, std::uint32_t frame);

}  // namespace monitor
