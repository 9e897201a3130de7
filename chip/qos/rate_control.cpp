#include "chip/qos/rate_control.h"

#include "qos/rate_control_registers.h"

namespace chip {

void DefineRateControl(RegisterFile& registers) {
  for (std::uint8_t queue = 0; queue < 4; ++queue) {
    registers.Define(monitor::OfQueue(monitor::kRateInformation, queue));
    registers.Define(monitor::OfQueue(monitor::kRateBucket, queue));
  }
}

}  // namespace chip
