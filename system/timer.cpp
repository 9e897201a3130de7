#include "system/timer.h"

#include "core/irq_guard.h"
#include "system/gpio_registers.h"
#include "system/timer_registers.h"

namespace monitor {
namespace {

void ClearStopAndPause(unsigned timer) {
  const unsigned both = kTimerStop[timer].Mask() | kTimerPause[timer].Mask();
  Modify(kTimerControl, 0, static_cast<std::uint8_t>(~both));
}

}  // namespace

DriverStatus TimerCounterRead(unsigned timer, std::uint16_t& counter) {
  if (timer >= kTimers) return DriverStatus::kRefused;
  counter = Read(kTimerCounter[timer]);
  return DriverStatus::kOk;
}

DriverStatus TimerConfigRead(unsigned timer, std::uint16_t& load, std::uint16_t& divisor) {
  if (timer >= kTimers) return DriverStatus::kRefused;
  load = Read(kTimerLoad[timer]);
  divisor = Read(kTimerDivisor[timer]);
  return DriverStatus::kOk;
}

DriverStatus TimerConfigWrite(unsigned timer, std::uint16_t load, std::uint16_t divisor) {
  if (timer >= kTimers) return DriverStatus::kRefused;
  IrqGuard lock;
  Write(kTimerLoad[timer], load);
  Write(kTimerDivisor[timer], divisor);
  return DriverStatus::kOk;
}

DriverStatus TimerStart(unsigned timer) {
  if (timer >= kTimers) return DriverStatus::kRefused;
  IrqGuard lock;
  ClearStopAndPause(timer);
  return DriverStatus::kOk;
}

DriverStatus TimerStop(unsigned timer) {
  if (timer >= kTimers) return DriverStatus::kRefused;
  IrqGuard lock;
  SetBits(kTimerControl, kTimerStop[timer]);
  return DriverStatus::kOk;
}

DriverStatus TimerPause(unsigned timer) {
  if (timer >= kTimers) return DriverStatus::kRefused;
  IrqGuard lock;
  SetBits(kTimerControl, kTimerPause[timer]);
  return DriverStatus::kOk;
}

DriverStatus TimerTest(unsigned timer) {
  if (timer >= kTimers) return DriverStatus::kRefused;
  IrqGuard lock;
  ClearStopAndPause(timer);
  Write(kGpioData, 0xFF);
  return DriverStatus::kOk;
}

namespace {

constexpr std::array<Keyword, kTimers> kTimerWords{{{"0", 0}, {"1", 1}}};

struct Action {
  const char* word;
  DriverStatus (*run)(unsigned timer);
  const char* done;
};

constexpr Action kActions[] = {
    {"R", TimerStart, "START"},
    {"S", TimerStop, "STOP"},
    {"P", TimerPause, "PAUSE"},
    {"T", TimerTest, "TEST"},
};

int ShowAll() {
  for (unsigned timer = 0; timer < kTimers; ++timer) {
    std::uint16_t counter;
    std::uint16_t load;
    std::uint16_t divisor;
    TimerCounterRead(timer, counter);
    TimerConfigRead(timer, load, divisor);
    Print("T%d COUNTER: %04x\t", timer, counter);
    Print("T%d LOAD VALUE: %04x\t", timer, load);
    Print("T%d DIVISOR: %04x\n\r", timer, divisor);
  }
  return kDone;
}

/// 0|1 p|s|r|t: the answer has no line end.
int Act(ArgVector argv) {
  std::uint8_t timer;
  if (!ParseKeyword(argv[1], kTimerWords, timer)) return kUsage;
  for (const Action& action : kActions) {
    if (!WordIs(argv[2], action.word)) continue;
    action.run(timer);
    Print("T%d IS %s", timer, action.done);
    return kDone;
  }
  return kUsage;
}

/// 0|1 = <start> <divisor>: shows what was typed, not what reads back.
int SetConfig(ArgVector argv) {
  std::uint8_t timer;
  std::uint16_t load;
  std::uint16_t divisor;
  if (!ParseKeyword(argv[1], kTimerWords, timer) || !WordIs(argv[2], "=") ||
      !ParseHex16(argv[3], load) || !ParseHex16(argv[4], divisor)) {
    return kUsage;
  }
  TimerConfigWrite(timer, load, divisor);
  Print("T%d LOAD VALUE: %04x\t", timer, load);
  Print("T%d DIVISOR : %04x\n\r", timer, divisor);
  return kDone;
}

}  // namespace

int TimerCommand(int argc, ArgVector argv) {
  switch (argc) {
    case 1:
      return ShowAll();
    case 3:
      return Act(argv);
    case 5:
      return SetConfig(argv);
    default:
      return kUsage;
  }
}

}  // namespace monitor
