#include "tables/mcast.h"

#include "core/engine.h"
#include "core/filter_registers.h"
#include "core/filter_switch.h"
#include "core/irq_guard.h"
#include "tables/mcast_registers.h"

namespace monitor {
namespace {

constexpr std::uint8_t kCounterSelect = kMcastCounterSelect.Mask();

// Only the write of an entry clears the counter select and only the write of a counter sets it;
// every other step, a counter read too, leaves it as it is.
constexpr EngineStep kReadEntry = ReadStep(kMcastCommand);
constexpr EngineStep kWriteEntry = WriteStep(kMcastCommand, {.clear = kCounterSelect});
constexpr EngineStep kReadCounter = ReadStep(kMcastCommand);
constexpr EngineStep kWriteCounter = WriteStep(kMcastCommand, {.set = kCounterSelect});
constexpr EngineStep kReadOverflow = ReadStep(kMcastCommand);
constexpr EngineStep kClearOverflow = WriteStep(kMcastCommand);

void SelectSlot(unsigned index) { Write(kMcastIndex, static_cast<std::uint8_t>(index)); }

}  // namespace

DriverStatus McastRead(unsigned index, McastEntry& entry) {
  if (index >= kMcastSlots) return DriverStatus::kRefused;
  SelectSlot(index);
  const DriverStatus status = RunEngine(kReadEntry);
  if (Failed(status)) return status;

  entry.ip = Read(kMcastIp);
  const std::uint8_t flags = Read(kMcastFlags);
  entry.ports = kMcastPorts.Get(flags);
  entry.valid = kMcastValid.Get(flags);
  return DriverStatus::kOk;
}

DriverStatus McastWrite(unsigned index, const McastEntry& entry) {
  if (index >= kMcastSlots || entry.ports > kMcastPorts.Mask()) return DriverStatus::kRefused;
  IrqGuard lock;
  SelectSlot(index);
  Write(kMcastIp, entry.ip);
  Write(kMcastFlags, entry.ports | kMcastValid.Mask());
  return RunEngineUnlocking(kWriteEntry, lock);
}

DriverStatus McastDelete(unsigned index) {
  if (index >= kMcastSlots) return DriverStatus::kRefused;
  SelectSlot(index);
  const DriverStatus status = RunEngine(kReadEntry);
  if (Failed(status)) return status;

  IrqGuard lock;
  SelectSlot(index);
  ClearBits(kMcastFlags, kMcastValid);
  return RunEngineUnlocking(kWriteEntry, lock);
}

DriverStatus McastReadCounter(unsigned index, std::uint32_t& value) {
  if (index >= kMcastSlots) return DriverStatus::kRefused;
  SelectSlot(index);
  const DriverStatus status = RunEngine(kReadCounter);
  if (Failed(status)) return status;
  value = Read(kMcastCounter);
  return DriverStatus::kOk;
}

DriverStatus McastWriteCounter(unsigned index, std::uint32_t value) {
  if (index >= kMcastSlots) return DriverStatus::kRefused;
  IrqGuard lock;
  SelectSlot(index);
  Write(kMcastCounter, value);
  return RunEngineUnlocking(kWriteCounter, lock);
}

DriverStatus McastCheckOverflow(EntryMap& map) {
  const DriverStatus status = RunEngine(kReadOverflow);
  if (Failed(status)) return status;
  ReadBytes(kMcastOverflow, map);
  return DriverStatus::kOk;
}

DriverStatus McastClearOverflow(const EntryMap& map) {
  IrqGuard lock;
  WriteBytes(kMcastOverflow, map);
  return RunEngineUnlocking(kClearOverflow, lock);
}

DriverStatus McastReadFlood(McastSettings& settings) {
  settings.flood = ReadFilter(kFloodMulticast);
  return DriverStatus::kOk;
}

DriverStatus McastWriteFlood(const McastSettings& settings) {
  WriteFilter(kFloodMulticast, settings.flood != 0);
  return DriverStatus::kOk;
}

}  // namespace monitor
