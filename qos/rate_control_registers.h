#pragma once

#include "core/register_map.h"

namespace monitor {

// The registers of queue 0; those of the other queues follow.
inline constexpr Reg16 kRateInformation{0x020, "RC_CIR", "committed information rate of a queue"};
inline constexpr Reg16 kRateBucket{0x022, "RC_BUCKET", "switch and bucket size of a queue"};
inline constexpr Field kRateEnable{15, 15, "enable", "the queue's rate is controlled"};
inline constexpr Field kRateBucketSize{14, 0, "cbs", "committed bucket size"};

/// The register of another queue.
[[nodiscard]] constexpr Reg16 OfQueue(Reg16 reg, std::uint8_t queue) {
  return {static_cast<std::uint16_t>(reg.offset + 4 * queue), reg.name, reg.meaning};
}

inline constexpr RegisterRow kRateControlRegisters[] = {
    OfQueue(kRateInformation, 0), {OfQueue(kRateBucket, 0), {kRateEnable, kRateBucketSize}},
    OfQueue(kRateInformation, 1), {OfQueue(kRateBucket, 1), {kRateEnable, kRateBucketSize}},
    OfQueue(kRateInformation, 2), {OfQueue(kRateBucket, 2), {kRateEnable, kRateBucketSize}},
    OfQueue(kRateInformation, 3), {OfQueue(kRateBucket, 3), {kRateEnable, kRateBucketSize}},
};

}  // namespace monitor
