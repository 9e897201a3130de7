#include "tables/l3_route.h"

#include "core/filter_registers.h"
#include "core/port_id.h"
#include "tables/l3_route_registers.h"

namespace monitor {
namespace {

constexpr unsigned kLongestMask = 32;

// The overflow steps leave the counter select as they find it.
// clang-format off
constexpr EngineStep kReadRoute    {kRouteCommand, 0x04, 0xE6, kEngineReadReady};
constexpr EngineStep kWriteRoute   {kRouteCommand, 0x0C, 0xED, kEngineWriteReady};
constexpr EngineStep kReadCounter  {kRouteCommand, 0x14, 0xF6, kEngineReadReady};
constexpr EngineStep kWriteCounter {kRouteCommand, 0x1C, 0xFD, kEngineWriteReady};
constexpr EngineStep kReadOverflow {kRouteCommand, 0x04, 0xF6, kEngineReadReady};
constexpr EngineStep kClearOverflow{kRouteCommand, 0x0C, 0xFD, kEngineWriteReady};
// clang-format on

void SelectSlot(unsigned index) { Write(kRouteIndex, static_cast<std::uint8_t>(index)); }

}  // namespace

DriverStatus L3Read(unsigned index, L3Route& route) {
  if (index >= kRouteSlots) return DriverStatus::kRefused;
  SelectSlot(index);
  const DriverStatus status = RunEngine(kReadRoute);
  if (Failed(status)) return status;

  route.ip = Read(kRouteIp);
  route.nextHop = Read(kRouteNextHop);
  route.mask = Read(kRouteMask);
  const std::uint8_t flags = Read(kRouteFlags);
  route.valid = kRouteValid.Get(flags);
  if (route.valid != 0) {
    const std::uint8_t port = kRoutePort.Get(flags);
    if (!IsPort(port)) return DriverStatus::kRefused;
    route.port = port;
  }
  route.direct = kRouteDirect.Get(flags);
  route.wanMac = kRouteWanMac.Get(flags);
  const std::uint8_t encapsulation = Read(kRouteEncapsulation);
  route.pppoe = kRoutePppoe.Get(encapsulation);
  route.session = kRouteSession.Get(encapsulation);
  return DriverStatus::kOk;
}

DriverStatus L3Write(unsigned index, const L3Route& route) {
  if (index >= kRouteSlots || route.mask > kLongestMask) return DriverStatus::kRefused;
  IrqState saved;
  IrqLock(&saved);
  SelectSlot(index);
  Write(kRouteIp, route.ip);
  Write(kRouteNextHop, route.nextHop);
  Write(kRouteMask, route.mask);
  if (!IsPort(route.port)) {
    IrqUnlock(saved);
    return DriverStatus::kRefused;
  }
  const unsigned direct = route.direct != 0 ? kRouteDirect.Mask() : 0U;
  const unsigned wan_mac = route.wanMac != 0 ? kRouteWanMac.Mask() : 0U;
  Write(kRouteFlags, static_cast<std::uint8_t>(route.port | direct | wan_mac | kRouteValid.Mask()));
  // Neither value is cut to its field: excess bits overflow into the neighbouring ones.
  Write(kRouteEncapsulation, static_cast<std::uint8_t>(route.pppoe | route.session << 1));
  return RunEngineUnlocking(kWriteRoute, saved);
}

DriverStatus L3Delete(unsigned index) {
  if (index >= kRouteSlots) return DriverStatus::kRefused;
  SelectSlot(index);
  const DriverStatus status = RunEngine(kReadRoute);
  if (Failed(status)) return status;

  IrqState saved;
  IrqLock(&saved);
  SelectSlot(index);
  ClearBits(kRouteFlags, kRouteValid);
  return RunEngineUnlocking(kWriteRoute, saved);
}

DriverStatus L3ReadCounter(unsigned index, std::uint32_t& value) {
  if (index >= kRouteSlots) return DriverStatus::kRefused;
  SelectSlot(index);
  const DriverStatus status = RunEngine(kReadCounter);
  if (Failed(status)) return status;
  value = Read(kRouteCounter);
  return DriverStatus::kOk;
}

DriverStatus L3WriteCounter(unsigned index, std::uint32_t value) {
  if (index >= kRouteSlots) return DriverStatus::kRefused;
  IrqState saved;
  IrqLock(&saved);
  SelectSlot(index);
  Write(kRouteCounter, value);
  return RunEngineUnlocking(kWriteCounter, saved);
}

DriverStatus L3CheckOverflow(EntryMap& map) {
  const DriverStatus status = RunEngine(kReadOverflow);
  if (Failed(status)) return status;
  ReadBytes(kRouteOverflow, map);
  return DriverStatus::kOk;
}

DriverStatus L3ClearOverflow(const EntryMap& map) {
  IrqState saved;
  IrqLock(&saved);
  WriteBytes(kRouteOverflow, map);
  return RunEngineUnlocking(kClearOverflow, saved);
}

DriverStatus L3ReadFilter(std::uint8_t& on) {
  on = kFilterL3.Get(Read(kFilterControl));
  return DriverStatus::kOk;
}

DriverStatus L3WriteFilter(std::uint8_t on) {
  IrqState saved;
  IrqLock(&saved);
  AssignBits(kFilterControl, kFilterL3, on != 0);
  IrqUnlock(saved);
  return DriverStatus::kOk;
}

}  // namespace monitor
