// Waits on hardware that have no time limit, and the operator's way out of them.
#pragma once

#include "core/driver_status.h"
#include "core/registers.h"

namespace monitor {

/// What a long wait waits for, without names, which the monitor does not need.
struct Awaited {
  std::uint16_t offset = 0;
  std::uint8_t mask = 0;   ///< The wait ends when one of these bits rises; 0: not a register wait.
  bool first_look = true;  ///< The console is looked at for the first time in this wait.
};

/// Counts the rounds of a loop that may never end by itself.
class LongWait {
 public:
  /// Rounds before the console is first looked at, and between looks after that.
  static constexpr unsigned kFirstLook = 100'000;
  static constexpr unsigned kLookEvery = 10'000;

  /// A wait for something that is not on the bus.
  LongWait() = default;

  /// A wait for a bit of `field`.
  LongWait(Reg8 reg, Field field) : awaited_{.offset = reg.offset, .mask = field.Mask()} {}

  /// Call once per round; true when the operator has typed Ctrl-C to end it.
  [[nodiscard]] bool GivenUp();

 private:
  unsigned rounds_left_ = kFirstLook;
  Awaited awaited_;
};

/// The operator's way out of a wait that may not end; like the bus, filled at link time. Flushes
/// the console, and when that is a terminal on which Ctrl-C has been typed, discards the input up
/// to and including it and answers true. Input without a Ctrl-C is kept. Also true when the
/// terminal has hung up, if the program outlives that. Never true when input comes from a pipe or a
/// file. `awaited` is for consoles that tell the operator what the wait is for.
[[nodiscard]] bool WaitInterrupted(const Awaited& awaited);

/// Loads `reg` until a bit of `field` is set, at least once, without a time limit. kOk, or
/// kNotReady when the operator ended the wait.
[[nodiscard]] DriverStatus WaitForBit(Reg8 reg, Field field);

/// Counts `rounds` rounds of an empty loop.
void Pause(unsigned rounds);

}  // namespace monitor
