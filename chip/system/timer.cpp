#include "chip/system/timer.h"

#include <algorithm>
#include <utility>

#include "system/timer_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

Timers::Timers(RegisterFile& registers, Clock clock)
    : registers_(registers), clock_(std::move(clock)) {
  for (unsigned i = 0; i < timers_.size(); ++i) Claim(i);
  registers.Define(kTimerControl,
                   {.reset = static_cast<std::uint8_t>(kTimerStop[0].Mask() | kTimerStop[1].Mask()),
                    .after_store = [this](std::uint32_t) { TakeSettings(); }});
}

void Timers::Claim(unsigned index) {
  const auto changed = [this](std::uint32_t) { TakeSettings(); };
  registers_.Define(kTimerCounter[index],
                    {.read_only = 0xFFFF, .before_load = [this, index] { ShowCounter(index); }});
  registers_.Define(kTimerLoad[index], {.after_store = changed});
  registers_.Define(kTimerDivisor[index], {.after_store = changed});
}

void Timers::Reset() { timers_.fill({}); }

void Timers::ShowCounter(unsigned index) {
  Advance(timers_[index]);
  registers_.Set(kTimerCounter[index], timers_[index].counter);
}

void Timers::TakeSettings() {
  const std::uint8_t control = registers_.Get(kTimerControl);
  for (unsigned i = 0; i < timers_.size(); ++i) {
    Timer& timer = timers_[i];
    Advance(timer);
    const std::uint16_t divisor = registers_.Get(kTimerDivisor[i]);
    if (divisor != timer.divisor) timer.into_count = 0;
    timer.divisor = divisor;
    timer.load = registers_.Get(kTimerLoad[i]);
    timer.stopped = kTimerStop[i].Get(control) != 0;
    timer.paused = kTimerPause[i].Get(control) != 0;
  }
}

/// Brings the timer up to now under the settings that it has had so far.
void Timers::Advance(Timer& timer) const {
  const std::uint64_t now = clock_();
  const std::uint64_t passed = now - timer.since;
  timer.since = now;
  if (timer.stopped) {
    timer.counter = timer.load;
    timer.into_count = 0;
  } else if (!timer.paused) {
    const std::uint64_t length = std::max<std::uint64_t>(timer.divisor, 1) * kNanosecondsPerCount;
    timer.into_count += passed;
    Count(timer, timer.into_count / length);
    timer.into_count %= length;
  }
}

void Timers::Count(Timer& timer, std::uint64_t counts) {
  if (counts > timer.counter) {
    // The count after 0 is the load value again.
    const std::uint64_t round = std::uint64_t{timer.load} + 1;
    counts = (counts - timer.counter - 1) % round;
    timer.counter = timer.load;
  }
  timer.counter = static_cast<std::uint16_t>(timer.counter - counts);
}

void Timers::State(StateArchive& archive) {
  for (unsigned i = 0; i < timers_.size(); ++i) {
    Timer& timer = timers_[i];
    Advance(timer);
    archive.Group(std::to_string(i), [&] {
      archive.Hex("load", timer.load);
      archive.Hex("divisor", timer.divisor);
      archive.Flag("stopped", timer.stopped);
      archive.Flag("paused", timer.paused);
      archive.Hex("counter", timer.counter);
      archive.Count("nanoseconds_into_count", timer.into_count);
    });
  }
}

}  // namespace chip
