#include "chip/mac/station_address.h"

#include "mac/station_address_registers.h"

namespace chip {

void DefineStationAddresses(RegisterFile& registers) {
  registers.Define(monitor::kCpuMac, {.notation = Notation::kMac});
  registers.Define(monitor::kWanIp, {.notation = Notation::kAddress});
  registers.Define(monitor::kLanIp, {.notation = Notation::kAddress});
  registers.Define(monitor::kDmzIp, {.notation = Notation::kAddress});
  registers.Define(monitor::kWanMac, {.notation = Notation::kMac});
}

}  // namespace chip
