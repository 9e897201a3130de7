#pragma once

#include <cstdint>

namespace monitor {

/// Result of every driver operation.
enum class DriverStatus : std::uint8_t {
  kOk = 0,
  kNotReady = 1,  ///< A ready bit was clear when the operation began, or a poll ran out.
  kRefused = 2,   ///< An argument is out of range (nothing was touched), or the chip refused.
  kNothing = 3,   ///< No received frame is waiting.
};

/// True for every result except kOk.
[[nodiscard]] constexpr bool Failed(DriverStatus status) { return status != DriverStatus::kOk; }

}  // namespace monitor
