#include "core/engine.h"

namespace monitor {
namespace {

constexpr unsigned kPulseRounds = 5;

}  // namespace

bool EngineReady(Reg8 command) {
  constexpr std::uint8_t kBoth = kEngineReadReady.Mask() | kEngineWriteReady.Mask();
  return (Read(command) & kBoth) == kBoth;
}

void PulseEngine(const EngineStep& step) {
  Modify(step.command, step.set, step.keep);
  Pause(kPulseRounds);
  if (step.end.store) {
    Write(step.command, step.end.value);
  } else {
    ClearBits(step.command, step.start);
  }
}

DriverStatus AwaitEngine(const EngineStep& step) { return WaitForBit(step.command, step.done); }

DriverStatus RunEngine(const EngineStep& step) {
  if (!EngineReady(step.command)) return DriverStatus::kNotReady;
  PulseEngine(step);
  return AwaitEngine(step);
}

DriverStatus RunEngineUnlocking(const EngineStep& step, IrqGuard& lock) {
  if (!EngineReady(step.command)) {
    lock.Release();
    return DriverStatus::kNotReady;
  }
  PulseEngine(step);
  lock.Release();
  return AwaitEngine(step);
}

}  // namespace monitor
