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

/// The register under its own name.
[[nodiscard]] constexpr Reg16 Named(const char* name, Reg16 reg) {
  return {reg.offset, name, reg.meaning};
}

inline constexpr RegisterRow kRateControlRegisters[] = {
    Named("RC0_CIR", OfQueue(kRateInformation, 0)),
    {Named("RC0_BUCKET", OfQueue(kRateBucket, 0)), {kRateEnable, kRateBucketSize}},
    Named("RC1_CIR", OfQueue(kRateInformation, 1)),
    {Named("RC1_BUCKET", OfQueue(kRateBucket, 1)), {kRateEnable, kRateBucketSize}},
    Named("RC2_CIR", OfQueue(kRateInformation, 2)),
    {Named("RC2_BUCKET", OfQueue(kRateBucket, 2)), {kRateEnable, kRateBucketSize}},
    Named("RC3_CIR", OfQueue(kRateInformation, 3)),
    {Named("RC3_BUCKET", OfQueue(kRateBucket, 3)), {kRateEnable, kRateBucketSize}},
};

}  // namespace monitor
