// Why the CPU gets a frame, by the frame's destination.
#pragma once

#include <span>

#include "chip/register_file.h"
#include "core/port_id.h"

namespace chip {

/// As the header of the frame's buffer gives it.
enum class ReceiveReason : std::uint8_t {
  kStation = 1,    ///< Sent to one of the chip's own MAC addresses.
  kBroadcast = 2,  ///< Sent to all stations.
  kMulticast = 3,  ///< Sent to a group.
  kOther = 4,      ///< Sent to another station.
};

/// The reason for a frame received on `port`. A destination that the frame cuts short counts as
/// padded with zeros.
[[nodiscard]] ReceiveReason ClassifyDestination(const RegisterFile& registers, monitor::PortId port,
                                                std::span<const std::uint8_t> frame);

}  // namespace chip
