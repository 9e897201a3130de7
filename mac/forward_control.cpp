#include "mac/forward_control.h"

#include "core/filter_registers.h"
#include "mac/forward_control_registers.h"

namespace monitor {

DriverStatus ReadForwardControl(ForwardControl& control) {
  control.filterWanToWan = kFilterWanToWan.Get(Read(kFilterControl));
  const std::uint8_t filter = Read(kForwardFilter);
  control.dropChecksumErrors = kDropChecksumErrors.Get(filter);
  control.frgnn = kFilterFragmentsNoNat.Get(filter);
  control.mirrlan = kMirrorLan.Get(filter);
  control.mirrwan = kMirrorWan.Get(filter);
  control.disttl = kKeepTtl.Get(filter);
  control.mtu = kFilterOverMtu.Get(filter);
  control.frg = kFilterFragmentsNat.Get(filter);
  control.frdallip = kForwardAllIp.Get(Read(kForwardAll));
  const std::uint8_t ppp = Read(kPppControl);
  control.pppMode = kPppMode.Get(ppp);
  control.ageoutbm = kReleaseAgedOut.Get(ppp);
  control.mtuBytes = kMtuBytes.Get(Read(kMtu));
  return DriverStatus::kOk;
}

DriverStatus WriteForwardControl(const ForwardControl& control) {
  IrqState saved;
  IrqLock(&saved);
  // One load and one store for each switch, even where several share a register.
  AssignBits(kFilterControl, kFilterWanToWan, control.filterWanToWan != 0);
  AssignBits(kForwardFilter, kDropChecksumErrors, control.dropChecksumErrors != 0);
  AssignBits(kForwardFilter, kFilterFragmentsNoNat, control.frgnn != 0);
  AssignBits(kForwardFilter, kMirrorLan, control.mirrlan != 0);
  AssignBits(kForwardFilter, kMirrorWan, control.mirrwan != 0);
  AssignBits(kForwardFilter, kKeepTtl, control.disttl != 0);
  AssignBits(kForwardFilter, kFilterOverMtu, control.mtu != 0);
  AssignBits(kForwardFilter, kFilterFragmentsNat, control.frg != 0);
  AssignBits(kForwardAll, kForwardAllIp, control.frdallip != 0);
  const unsigned other = Read(kPppControl) & ~unsigned{kPppMode.Mask()};
  Write(kPppControl, static_cast<std::uint8_t>(other | kPppMode.Put(control.pppMode)));
  AssignBits(kPppControl, kReleaseAgedOut, control.ageoutbm != 0);
  Write(kMtu, kMtuBytes.Put<std::uint16_t>(control.mtuBytes));
  IrqUnlock(saved);
  return DriverStatus::kOk;
}

}  // namespace monitor
