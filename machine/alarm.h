#pragma once

#include <cstdint>
#include <optional>

#include "host/descriptor.h"

namespace board {

/// A timer that wakes a wait at a deadline.
class Alarm {
 public:
  /// Throws std::system_error when the system has no timer left.
  Alarm();

  /// Rings at this moment of the monotonic clock, in nanoseconds, or never; what was set before is
  /// off. A moment that has passed rings at once.
  void Set(std::optional<std::uint64_t> at);

  /// Descriptor that is readable while it rings.
  [[nodiscard]] int WatchedFd() const { return timer_.Get(); }

 private:
  Descriptor timer_;
  std::optional<std::uint64_t> at_;
};

}  // namespace board
