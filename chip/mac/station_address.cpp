#include "chip/mac/station_address.h"

#include "mac/station_address_registers.h"

namespace chip {

void DefineStationAddresses(RegisterFile& registers) {
  registers.Define(monitor::kCpuMac);
  registers.Define(monitor::kWanIp);
  registers.Define(monitor::kLanIp);
  registers.Define(monitor::kDmzIp);
  registers.Define(monitor::kWanMac);
}

}  // namespace chip
