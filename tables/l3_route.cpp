#include "tables/l3_route.h"

#include "core/engine.h"
#include "core/filter_registers.h"
#include "core/filter_switch.h"
#include "core/irq_guard.h"
#include "core/port_id.h"
#include "tables/l3_route_registers.h"

namespace monitor {
namespace {

constexpr unsigned kLongestMask = 32;

constexpr std::uint8_t kCounterSelect = kRouteCounterSelect.Mask();

// The overflow steps leave the counter select as they find it.
constexpr EngineStep kReadRoute = ReadStep(kRouteCommand, {.clear = kCounterSelect});
constexpr EngineStep kWriteRoute = WriteStep(kRouteCommand, {.clear = kCounterSelect});
constexpr EngineStep kReadCounter = ReadStep(kRouteCommand, {.set = kCounterSelect});
constexpr EngineStep kWriteCounter = WriteStep(kRouteCommand, {.set = kCounterSelect});
constexpr EngineStep kReadOverflow = ReadStep(kRouteCommand);
constexpr EngineStep kClearOverflow = WriteStep(kRouteCommand);

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
  IrqGuard lock;
  SelectSlot(index);
  Write(kRouteIp, route.ip);
  Write(kRouteNextHop, route.nextHop);
  Write(kRouteMask, route.mask);
  if (!IsPort(route.port)) return DriverStatus::kRefused;
  const unsigned direct = route.direct != 0 ? kRouteDirect.Mask() : 0U;
  const unsigned wan_mac = route.wanMac != 0 ? kRouteWanMac.Mask() : 0U;
  Write(kRouteFlags, static_cast<std::uint8_t>(route.port | direct | wan_mac | kRouteValid.Mask()));
  // Neither value is cut to its field: excess bits overflow into the neighbouring ones.
  Write(kRouteEncapsulation, static_cast<std::uint8_t>(route.pppoe | route.session << 1));
  return RunEngineUnlocking(kWriteRoute, lock);
}

DriverStatus L3Delete(unsigned index) {
  if (index >= kRouteSlots) return DriverStatus::kRefused;
  SelectSlot(index);
  const DriverStatus status = RunEngine(kReadRoute);
  if (Failed(status)) return status;

  IrqGuard lock;
  SelectSlot(index);
  ClearBits(kRouteFlags, kRouteValid);
  return RunEngineUnlocking(kWriteRoute, lock);
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
  IrqGuard lock;
  SelectSlot(index);
  Write(kRouteCounter, value);
  return RunEngineUnlocking(kWriteCounter, lock);
}

DriverStatus L3CheckOverflow(EntryMap& map) {
  const DriverStatus status = RunEngine(kReadOverflow);
  if (Failed(status)) return status;
  ReadBytes(kRouteOverflow, map);
  return DriverStatus::kOk;
}

DriverStatus L3ClearOverflow(const EntryMap& map) {
  IrqGuard lock;
  WriteBytes(kRouteOverflow, map);
  return RunEngineUnlocking(kClearOverflow, lock);
}

DriverStatus L3ReadFilter(std::uint8_t& on) {
  on = ReadFilter(kFilterL3);
  return DriverStatus::kOk;
}

DriverStatus L3WriteFilter(std::uint8_t on) {
  WriteFilter(kFilterL3, on != 0);
  return DriverStatus::kOk;
}

}  // namespace monitor
