// Waits on hardware that have no time limit, and the operator's way out of them.
#pragma once

#include "core/driver_status.h"
#include "core/registers.h"

namespace monitor {

/// Counts the rounds of a loop that may never end by itself.
class LongWait {
 public:
  /// Rounds before the console is first looked at, and between looks after that.
  static constexpr unsigned kFirstLook = 100'000;
  static constexpr unsigned kLookEvery = 10'000;

  /// Call once a round; true when the operator has typed Ctrl-C to end it.
  [[nodiscard]] bool GivenUp();

 private:
  unsigned rounds_left_ = kFirstLook;
};

/// Loads `reg` until a bit of `field` is set, at least once, without a time limit. kOk, or
/// kNotReady when the operator ended the wait.
[[nodiscard]] DriverStatus WaitForBit(Reg8 reg, Field field);

/// Counts `rounds` rounds of an empty loop.
void Pause(unsigned rounds);

}  // namespace monitor
