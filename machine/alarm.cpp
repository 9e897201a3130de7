#include "machine/alarm.h"

#include <sys/timerfd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace board {

Alarm::Alarm() : timer_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {
  if (!timer_.Open()) {
    throw std::system_error(errno, std::generic_category(), "cannot make a timer");
  }
}

void Alarm::Set(std::optional<std::uint64_t> at) {
  if (at == at_) return;
  at_ = at;
  constexpr std::uint64_t kPerSecond = 1'000'000'000;
  itimerspec when{};
  // A timer set to 0 would never expire.
  const std::uint64_t moment = at ? std::max<std::uint64_t>(*at, 1) : 0;
  when.it_value = {.tv_sec = static_cast<time_t>(moment / kPerSecond),
                   .tv_nsec = static_cast<long>(moment % kPerSecond)};
  timerfd_settime(timer_.Get(), TFD_TIMER_ABSTIME, &when, nullptr);
}

}  // namespace board
