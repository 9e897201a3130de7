// Rate control of four queues: a committed information rate, a committed bucket size, a switch.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

inline constexpr unsigned kRateQueues = 4;

struct RateControl {
  std::uint16_t cir;    ///< Committed information rate.
  std::uint16_t cbs;    ///< Committed bucket size; 15 bits are kept.
  std::uint8_t enable;  ///< 0 or 1.
};

// Both are always kOk. The queue is not checked: one above 3 addresses what follows the four.

DriverStatus WriteRateControl(std::uint8_t queue, const RateControl& rate);
DriverStatus ReadRateControl(std::uint8_t queue, RateControl& rate);

/// Prints the settings as those of `queue`.
void RateControlPrint(const RateControl& rate, unsigned queue);

/// The `rc` command.
int RateControlCommand(int argc, ArgVector argv);

}  // namespace monitor
