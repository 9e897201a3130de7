// The timers of the model: two 16-bit down counters, computed from the clock when they are
// read.
#pragma once

#include <array>

#include "chip/block.h"
#include "chip/clock.h"
#include "chip/register_file.h"

namespace chip {

class Timers : public Block {
 public:
  /// Length of a count with divisor 1; a divisor of 0 counts as 1.
  static constexpr std::uint64_t kNanosecondsPerCount = 1000;

  Timers(RegisterFile& registers, Clock clock);
  Timers(const Timers&) = delete;
  Timers& operator=(const Timers&) = delete;

  [[nodiscard]] const char* Name() const override { return "timers"; }
  void Reset() override;

  /// Timers are saved at their present count, and continue from it when they are restored.
  void State(StateArchive& archive) override;

 private:
  /// A timer's settings, in force since `since`, and its count then.
  struct Timer {
    std::uint16_t load = 0;
    std::uint16_t divisor = 0;
    bool stopped = true;
    bool paused = false;
    std::uint16_t counter = 0;
    std::uint64_t into_count = 0;  ///< Nanoseconds that the present count has lasted.
    std::uint64_t since = 0;
  };

  void Claim(unsigned index);
  void ShowCounter(unsigned index);
  void TakeSettings();
  void Advance(Timer& timer) const;
  static void Count(Timer& timer, std::uint64_t counts);

  RegisterFile& registers_;
  Clock clock_;
  std::array<Timer, 2> timers_;
};

}  // namespace chip
