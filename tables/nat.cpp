#include "tables/nat.h"

#include "core/engine.h"
#include "core/irq_guard.h"
#include "tables/nat_registers.h"

namespace monitor {
namespace {

constexpr std::uint8_t kStoreValid = kNatStoreValid.Mask();
constexpr std::uint8_t kBit7 = Field{7, 7}.Mask();

// Bit 5 is kept by every step, bit 7 by every step but the first of a delete by index.
constexpr EngineStep kReadEntry = ReadStep(kNatCommand, {}, kNatEngine);
constexpr EngineStep kReadForDelete = ReadStep(kNatCommand, {.clear = kBit7}, kNatEngine);
constexpr EngineStep kWriteEntry = WriteStep(kNatCommand, {.set = kStoreValid}, kNatEngine);
constexpr EngineStep kDeleteEntry = WriteStep(kNatCommand, {.clear = kStoreValid}, kNatEngine);

constexpr unsigned kHomeSlots = 0x80;
constexpr unsigned kOverflowArea = 0x80;
constexpr unsigned kOverflowGroup = 0x60;  ///< Bits of the home slot that choose the group.
constexpr unsigned kProbes = 33;           ///< The home slot and the 32 slots of a group.

void SelectSlot(unsigned slot) { Write(kNatIndex, static_cast<std::uint8_t>(slot)); }

constexpr bool InTable(NatTable table, unsigned slot) {
  return table == NatTable::kMain || slot < kNatServerSlots;
}

constexpr std::uint8_t TableSelect(NatTable table) {
  return kNatServerTable.Put(table == NatTable::kServer ? 1 : 0);
}

/// The result bit: one load.
DriverStatus StepResult() {
  return kNatResult.Get(Read(kNatCommand)) != 0 ? DriverStatus::kOk : DriverStatus::kRefused;
}

DriverStatus ReadSlot(const EngineStep& step, NatTable table, unsigned slot) {
  SelectSlot(slot);
  Write(kNatControl, TableSelect(table));
  const DriverStatus status = RunEngine(step);
  return Failed(status) ? status : StepResult();
}

std::uint8_t LoadValid(NatTable table, unsigned slot) {
  const Reg8 bits = table == NatTable::kServer ? kNatServerValid[slot / 8] : kNatValid[slot / 8];
  return Read(bits) >> (slot % 8) & 1;
}

/// Fills the entry from the registers, where a read step of slot `index` left it.
void LoadEntry(NatTable table, NatEntry& entry) {
  entry.sip = Read(kNatSip);
  entry.dip = Read(kNatDip);
  entry.sport = Read(kNatSport);
  entry.dport = Read(kNatDport);
  entry.protocol = kNatTcp.Get(Read(kNatControl));
  entry.age = Read(kNatAge);
  entry.server = kNatInsideServer.Get(Read(kNatControl));
  entry.nsip = Read(kNatNsip);
  entry.nsport = Read(kNatNsport);
  entry.valid = LoadValid(table, entry.index);
}

void StoreEntry(NatTable table, const NatEntry& entry) {
  Write(kNatSip, entry.sip);
  Write(kNatDip, entry.dip);
  Write(kNatSport, entry.sport);
  Write(kNatDport, entry.dport);
  Write(kNatNsip, entry.nsip);
  Write(kNatNsport, entry.nsport);
  Write(kNatAge, entry.age);
  const bool server = table == NatTable::kServer && entry.server != 0;
  Write(kNatControl, TableSelect(table) | kNatInsideServer.Put(server ? 1 : 0) |
                         kNatTcp.Put(entry.protocol == 1 ? 1 : 0));
}

DriverStatus ReadByIndex(NatTable table, NatEntry& entry) {
  if (!InTable(table, entry.index)) return DriverStatus::kRefused;
  const DriverStatus status = ReadSlot(kReadEntry, table, entry.index);
  if (!Failed(status)) LoadEntry(table, entry);
  return status;
}

DriverStatus WriteByIndex(NatTable table, const NatEntry& entry) {
  if (!InTable(table, entry.index)) return DriverStatus::kRefused;
  IrqGuard lock;
  SelectSlot(entry.index);
  StoreEntry(table, entry);
  const DriverStatus status = RunEngineUnlocking(kWriteEntry, lock);
  return Failed(status) ? status : StepResult();
}

/// Does not wait for the delete step: what its result bit holds right after the pulse counts.
DriverStatus DeleteByIndex(NatTable table, const NatEntry& entry) {
  if (!InTable(table, entry.index)) return DriverStatus::kRefused;
  const DriverStatus status = ReadSlot(kReadForDelete, table, entry.index);
  if (Failed(status)) return status;
  if (!EngineReady(kNatCommand)) return DriverStatus::kNotReady;
  PulseEngine(kDeleteEntry);
  return StepResult();
}

/// The slot of a probe, 0 to 32, for the home slot of a key.
using ProbeSequence = unsigned (*)(unsigned home, unsigned probe);

/// Writes and deletes go through the overflow group in ascending order.
unsigned GroupProbe(unsigned home, unsigned probe) {
  return probe == 0 ? home : kOverflowArea | (home & kOverflowGroup) | (probe - 1);
}

/// Reads look at the same overflow slot again and again.
unsigned MirrorProbe(unsigned home, unsigned probe) {
  return probe == 0 ? home : kOverflowArea | home;
}

/// Reads slots until one holds the entry's destination, and sets `index` to that one.
DriverStatus Search(ProbeSequence slot_of, NatEntry& entry) {
  const unsigned home = NatHash(entry.dip, entry.dport);
  for (unsigned probe = 0; probe < kProbes; ++probe) {
    const unsigned slot = slot_of(home, probe);
    const DriverStatus status = ReadSlot(kReadEntry, NatTable::kMain, slot);
    if (Failed(status)) return status;
    if (Read(kNatDip) != entry.dip || Read(kNatDport) != entry.dport) continue;
    entry.index = static_cast<std::uint8_t>(slot);
    return DriverStatus::kOk;
  }
  return DriverStatus::kRefused;
}

DriverStatus ReadByHash(NatEntry& entry) {
  const DriverStatus status = Search(MirrorProbe, entry);
  if (!Failed(status)) LoadEntry(NatTable::kMain, entry);
  return status;
}

/// Offers the entry, which is in the registers, to slot after slot.
DriverStatus Place(NatEntry& entry) {
  const unsigned home = NatHash(entry.dip, entry.dport);
  for (unsigned probe = 0; probe < kProbes; ++probe) {
    const unsigned slot = GroupProbe(home, probe);
    SelectSlot(slot);
    const DriverStatus status = RunEngine(kWriteEntry);
    if (Failed(status)) return status;
    if (Failed(StepResult())) continue;
    entry.index = static_cast<std::uint8_t>(slot);
    return DriverStatus::kOk;
  }
  return DriverStatus::kRefused;
}

/// Holds the lock for the whole search, the waits included.
DriverStatus WriteByHash(NatEntry& entry) {
  IrqGuard lock;
  StoreEntry(NatTable::kMain, entry);
  const DriverStatus status = Place(entry);
  return status;
}

DriverStatus DeleteByHash(NatEntry& entry) {
  DriverStatus status = Search(GroupProbe, entry);
  if (!Failed(status)) status = RunEngine(kDeleteEntry);
  return Failed(status) ? status : StepResult();
}

}  // namespace

DriverStatus NatRead(NatTable table, NatAccess access, NatEntry& entry) {
  return access == NatAccess::kByIndex ? ReadByIndex(table, entry) : ReadByHash(entry);
}

DriverStatus NatWrite(NatTable table, NatAccess access, NatEntry& entry) {
  return access == NatAccess::kByIndex ? WriteByIndex(table, entry) : WriteByHash(entry);
}

DriverStatus NatDelete(NatTable table, NatAccess access, NatEntry& entry) {
  return access == NatAccess::kByIndex ? DeleteByIndex(table, entry) : DeleteByHash(entry);
}

unsigned NatHash(std::uint32_t dip, std::uint16_t dport) { return (dip ^ dport) % kHomeSlots; }

}  // namespace monitor
