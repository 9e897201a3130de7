#include "tables/nat_config.h"

#include "core/filter_registers.h"
#include "core/irq_guard.h"
#include "tables/nat_config_registers.h"

namespace monitor {

DriverStatus NatConfigRead(NatConfig& config) {
  config.ip = Read(kNatIp);
  config.portPrefix = Read(kNatPortPrefix);
  config.defaultAge = Read(kNatDefaultAge);
  config.finAge = Read(kNatFinAge);
  const std::uint8_t flags = Read(kNatFlags);
  config.lanToWan = kNatLanToWan.Get(flags);
  config.dmzToWan = kNatDmzToWan.Get(flags);
  config.autoTcp = kNatAutoTcp.Get(flags);
  config.autoUdp = kNatAutoUdp.Get(flags);
  config.disableAgeOut = kNatDisableAgeOut.Get(flags);
  config.filter = kFilterNat.Get(Read(kFilterControl));
  return DriverStatus::kOk;
}

DriverStatus NatConfigWrite(const NatConfig& config) {
  IrqGuard lock;
  Write(kNatIp, config.ip);
  Write(kNatPortPrefix, config.portPrefix);
  Write(kNatDefaultAge, config.defaultAge);
  Write(kNatFinAge, config.finAge);
  AssignBits(kNatFlags, kNatLanToWan, config.lanToWan != 0);
  AssignBits(kNatFlags, kNatDmzToWan, config.dmzToWan != 0);
  // Off clears the bit of the same number in the flags, not in the filter control byte; the
  // UDP switch, which is that bit, is written below. So the filter cannot be switched off.
  if (config.filter != 0) {
    SetBits(kFilterControl, kFilterNat);
  } else {
    ClearBits(kNatFlags, kFilterNat);
  }
  AssignBits(kNatFlags, kNatAutoTcp, config.autoTcp != 0);
  AssignBits(kNatFlags, kNatAutoUdp, config.autoUdp != 0);
  AssignBits(kNatFlags, kNatDisableAgeOut, config.disableAgeOut != 0);
  return DriverStatus::kOk;
}

}  // namespace monitor
