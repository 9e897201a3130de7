// Statistic counters: 28 for each of the three external ports, with an overflow bit each. They
// are kept in eight groups per port, packed into two words per group, and accessed through a
// selector, data registers and a command byte. The engine reports no result: a finished step
// counts as success.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"
#include "core/port_id.h"

namespace monitor {

inline constexpr unsigned kStatCounters = 28;

/// In index order; the index is also the counter's bit in an overflow mask.
extern const std::array<const char*, kStatCounters> StatCounterNames;

/// The counters of a port, in index order.
using StatCounterBlock = std::array<std::uint32_t, kStatCounters>;

// All operations: kNotReady when the engine is busy, kRefused, with nothing touched, for a port
// other than kPortWan, kPortLan and kPortDmz.

/// kRefused also for an index above 27.
[[nodiscard]] DriverStatus ReadStatCounter(std::uint8_t port, unsigned index, std::uint32_t& value);

/// Reads group after group; a busy engine leaves the groups before it filled.
[[nodiscard]] DriverStatus BatchReadStatCounters(std::uint8_t port, StatCounterBlock& block);

/// Sets all counters of the port to 0, group after group; the overflow bits stay.
[[nodiscard]] DriverStatus ClearAllStatCounters(std::uint8_t port);

/// Bit i of `mask` is set when counter i has overflowed.
[[nodiscard]] DriverStatus CheckStatOverflow(std::uint8_t port, std::uint32_t& mask);

/// Clears the overflow bits that are 1 in `mask`.
[[nodiscard]] DriverStatus ClearStatOverflow(std::uint8_t port, std::uint32_t mask);

/// The `sc` command.
int StatCountersCommand(int argc, ArgVector argv);

}  // namespace monitor
