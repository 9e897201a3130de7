#include "mac/station_address.h"

#include "core/irq_guard.h"
#include "mac/station_address_registers.h"

namespace monitor {
namespace {

const RegBytes<6>* FindMac(std::uint8_t port) {
  switch (port) {
    case kPortCpu:
      return &kCpuMac;
    case kPortWan:
      return &kWanMac;
    default:
      return nullptr;
  }
}

const Reg32* FindIp(std::uint8_t port) {
  switch (port) {
    case kPortWan:
      return &kWanIp;
    case kPortLan:
      return &kLanIp;
    case kPortDmz:
      return &kDmzIp;
    default:
      return nullptr;
  }
}

}  // namespace

DriverStatus WriteMacAddr(std::uint8_t port, const MacAddress& mac) {
  const RegBytes<6>* const regs = FindMac(port);
  if (regs == nullptr) return DriverStatus::kRefused;
  IrqGuard lock;
  WriteBytes(*regs, mac);
  return DriverStatus::kOk;
}

DriverStatus ReadMacAddr(std::uint8_t port, MacAddress& mac) {
  const RegBytes<6>* const regs = FindMac(port);
  if (regs == nullptr) return DriverStatus::kRefused;
  ReadBytes(*regs, mac);
  return DriverStatus::kOk;
}

DriverStatus WriteIpAddr(std::uint8_t port, std::uint32_t address) {
  const Reg32* const reg = FindIp(port);
  if (reg == nullptr) return DriverStatus::kRefused;
  Write(*reg, address);
  return DriverStatus::kOk;
}

DriverStatus ReadIpAddr(std::uint8_t port, std::uint32_t& address) {
  const Reg32* const reg = FindIp(port);
  if (reg == nullptr) return DriverStatus::kRefused;
  address = Read(*reg);
  return DriverStatus::kOk;
}

}  // namespace monitor
