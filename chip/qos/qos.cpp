#include "chip/qos/qos.h"

#include "qos/qos_registers.h"

namespace chip {

void DefineQos(RegisterFile& registers) {
  registers.Define(monitor::kQueueThresholds);
  registers.Define(monitor::kRedSharePool);
  registers.Define(monitor::kMcastHighBuffers);
  registers.Define(monitor::kMcastLowBuffers);
  registers.Define(monitor::kDropControl);
  registers.Define(monitor::kQueueDrop);
  registers.Define(monitor::kQueueCredit);
  registers.Define(monitor::kNoBufferThreshold);
  registers.Define(monitor::kXonThreshold);
  registers.Define(monitor::kXoffThreshold);
}

}  // namespace chip
