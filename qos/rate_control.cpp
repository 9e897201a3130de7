#include "qos/rate_control.h"

#include "qos/rate_control_registers.h"

namespace monitor {

DriverStatus WriteRateControl(std::uint8_t queue, const RateControl& rate) {
  Write(OfQueue(kRateInformation, queue), rate.cir);
  Write(OfQueue(kRateBucket, queue),
        static_cast<std::uint16_t>(kRateBucketSize.Put<std::uint16_t>(rate.cbs) |
                                   kRateEnable.Put<std::uint16_t>(rate.enable)));
  return DriverStatus::kOk;
}

DriverStatus ReadRateControl(std::uint8_t queue, RateControl& rate) {
  rate.cir = Read(OfQueue(kRateInformation, queue));
  const std::uint16_t bucket = Read(OfQueue(kRateBucket, queue));
  rate.cbs = kRateBucketSize.Get(bucket);
  rate.enable = static_cast<std::uint8_t>(kRateEnable.Get(bucket));
  return DriverStatus::kOk;
}

}  // namespace monitor
