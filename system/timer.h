// The two 16-bit timers, each with a counter, a load value and a clock divisor, and a shared
// control byte.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

inline constexpr unsigned kTimers = 2;

// All operations: kRefused, with nothing touched, for a timer above 1, otherwise kOk.

DriverStatus TimerCounterRead(unsigned timer, std::uint16_t& counter);
DriverStatus TimerConfigRead(unsigned timer, std::uint16_t& load, std::uint16_t& divisor);
DriverStatus TimerConfigWrite(unsigned timer, std::uint16_t load, std::uint16_t divisor);

/// Clears the timer's stop and pause bits.
DriverStatus TimerStart(unsigned timer);

/// Sets the timer's stop bit; the pause bit stays.
DriverStatus TimerStop(unsigned timer);

/// Sets the timer's pause bit; the stop bit stays.
DriverStatus TimerPause(unsigned timer);

/// Starts the timer and drives every general-purpose pin high.
DriverStatus TimerTest(unsigned timer);

/// The `timer` command. It accepts one action that its usage rows do not show: "t" for the test.
int TimerCommand(int argc, ArgVector argv);

}  // namespace monitor
