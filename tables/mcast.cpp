#include "tables/mcast.h"

#include "core/filter_registers.h"
#include "tables/mcast_registers.h"

namespace monitor {
namespace {

// Only the write of an entry clears the counter select and only the write of a counter sets it;
// every other step, including a counter read, leaves it unchanged.
// clang-format off
constexpr EngineStep kReadEntry    {kMcastCommand, 0x04, 0xF6, kEngineReadReady};
constexpr EngineStep kWriteEntry   {kMcastCommand, 0x0C, 0xED, kEngineWriteReady};
constexpr EngineStep kReadCounter  {kMcastCommand, 0x04, 0xF6, kEngineReadReady};
constexpr EngineStep kWriteCounter {kMcastCommand, 0x1C, 0xFD, kEngineWriteReady};
constexpr EngineStep kReadOverflow {kMcastCommand, 0x04, 0xF6, kEngineReadReady};
constexpr EngineStep kClearOverflow{kMcastCommand, 0x0C, 0xFD, kEngineWriteReady};
// clang-format on

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
  IrqState saved;
  IrqLock(&saved);
  SelectSlot(index);
  Write(kMcastIp, entry.ip);
  Write(kMcastFlags, entry.ports | kMcastValid.Mask());
  return RunEngineUnlocking(kWriteEntry, saved);
}

DriverStatus McastDelete(unsigned index) {
  if (index >= kMcastSlots) return DriverStatus::kRefused;
  SelectSlot(index);
  const DriverStatus status = RunEngine(kReadEntry);
  if (Failed(status)) return status;

  IrqState saved;
  IrqLock(&saved);
  SelectSlot(index);
  ClearBits(kMcastFlags, kMcastValid);
  return RunEngineUnlocking(kWriteEntry, saved);
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
  IrqState saved;
  IrqLock(&saved);
  SelectSlot(index);
  Write(kMcastCounter, value);
  return RunEngineUnlocking(kWriteCounter, saved);
}

DriverStatus McastCheckOverflow(EntryMap& map) {
  const DriverStatus status = RunEngine(kReadOverflow);
  if (Failed(status)) return status;
  ReadBytes(kMcastOverflow, map);
  return DriverStatus::kOk;
}

DriverStatus McastClearOverflow(const EntryMap& map) {
  IrqState saved;
  IrqLock(&saved);
  WriteBytes(kMcastOverflow, map);
  return RunEngineUnlocking(kClearOverflow, saved);
}

DriverStatus McastReadFlood(McastSettings& settings) {
  settings.flood = kFloodMulticast.Get(Read(kFilterControl));
  return DriverStatus::kOk;
}

DriverStatus McastWriteFlood(const McastSettings& settings) {
  IrqState saved;
  IrqLock(&saved);
  AssignBits(kFilterControl, kFloodMulticast, settings.flood != 0);
  IrqUnlock(saved);
  return DriverStatus::kOk;
}

}  // namespace monitor
