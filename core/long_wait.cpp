#include "core/long_wait.h"

namespace monitor {

bool LongWait::GivenUp() {
  if (--rounds_left_ != 0) return false;
  rounds_left_ = kLookEvery;
  const Awaited awaited = awaited_;
  awaited_.first_look = false;
  return WaitInterrupted(awaited);
}

DriverStatus WaitForBit(Reg8 reg, Field field) {
  LongWait wait(reg, field);
  while ((Read(reg) & field.Mask()) == 0) {
    if (wait.GivenUp()) return DriverStatus::kNotReady;
  }
  return DriverStatus::kOk;
}

void Pause(unsigned rounds) {
  for (; rounds != 0; --rounds) {
    // Nothing for the processor, but the compiler has to keep it.
    asm volatile("");
  }
}

}  // namespace monitor
