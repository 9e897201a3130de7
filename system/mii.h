// MII management: access to the registers of the Ethernet PHYs, 32 addresses with 32 registers of
// 16 bits each. Every poll of the status is two loads, of which the first counts; the value read
// is assembled from two loads. All polling is bounded.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

/// PHY addresses, and registers of a PHY.
inline constexpr unsigned kMiiAddresses = 32;

// Both operations: kRefused, with nothing touched, for a PHY address or register above 31.
// kNotReady when the interface is busy (nothing is stored) or does not finish within 10,001 polls
// of the status.

/// `value` is filled on success only.
[[nodiscard]] DriverStatus MiiRead(std::uint8_t phy, std::uint8_t reg, std::uint16_t& value);

DriverStatus MiiWrite(std::uint8_t phy, std::uint8_t reg, std::uint16_t value);

/// The `mii` command.
int MiiCommand(int argc, ArgVector argv);

}  // namespace monitor
