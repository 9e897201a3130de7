#include "tables/arp.h"

#include "core/engine.h"
#include "core/filter_registers.h"
#include "core/filter_switch.h"
#include "core/irq_guard.h"
#include "tables/arp_registers.h"

namespace monitor {
namespace {

constexpr EngineStep kReadStep = ReadStep(kArpCommand);
constexpr EngineStep kWriteStep = WriteStep(kArpCommand);

constexpr bool InTable(unsigned index) { return static_cast<std::uint16_t>(index) < kArpSlots; }

void SelectSlot(unsigned index) { Write(kArpIndex, static_cast<std::uint8_t>(index)); }

}  // namespace

DriverStatus ArpRead(unsigned index, ArpEntry& entry) {
  if (!InTable(index)) return DriverStatus::kRefused;
  SelectSlot(index);
  const DriverStatus status = RunEngine(kReadStep);
  if (Failed(status)) return status;

  entry.ip = Read(kArpIp);
  ReadBytes(kArpMac, entry.mac);
  entry.valid = kArpValid.Get(Read(kArpFlags));
  return DriverStatus::kOk;
}

DriverStatus ArpWrite(unsigned index, const ArpEntry& entry) {
  if (!InTable(index)) return DriverStatus::kRefused;
  IrqGuard lock;
  SelectSlot(index);
  Write(kArpFlags, kArpValid.Mask());
  Write(kArpIp, entry.ip);
  WriteBytes(kArpMac, entry.mac);
  return RunEngineUnlocking(kWriteStep, lock);
}

DriverStatus ArpDelete(unsigned index) {
  if (!InTable(index)) return DriverStatus::kRefused;
  SelectSlot(index);
  const DriverStatus status = RunEngine(kReadStep);
  if (Failed(status)) return status;

  IrqGuard lock;
  ClearBits(kArpFlags, kArpValid);
  return RunEngineUnlocking(kWriteStep, lock);
}

DriverStatus ArpReadReference(EntryMap& map) {
  const DriverStatus status = RunEngine(kReadStep);
  if (Failed(status)) return status;
  ReadBytes(kArpReference, map);
  return DriverStatus::kOk;
}

DriverStatus ArpClearReference(const EntryMap& map) {
  IrqGuard lock;
  WriteBytes(kArpReference, map);
  return RunEngineUnlocking(kWriteStep, lock);
}

DriverStatus ArpReadFilter(std::uint8_t& on) {
  on = ReadFilter(kFilterArp);
  return DriverStatus::kOk;
}

DriverStatus ArpWriteFilter(std::uint8_t on) {
  WriteFilter(kFilterArp, on != 0);
  return DriverStatus::kOk;
}

}  // namespace monitor
