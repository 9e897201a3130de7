#include "pppoe/pxt.h"

#include "pppoe/pxt_registers.h"

namespace monitor {
namespace {

// A write ends its pulse with a fixed value: start cleared, write and read ready as ones.
constexpr EngineStep kReadEntry{kPxtCommand, 0x04, 0xF6, kEngineReadReady};
constexpr EngineStep kWriteEntry{kPxtCommand,       0x0C,         0xFD,
                                 kEngineWriteReady, kEngineStart, {true, 0x09}};

/// A switch of an entry and its bit.
struct Switch {
  std::uint8_t PxtEntry::*member;
  Field field;
};

constexpr Switch kSwitches[] = {
    {&PxtEntry::internalUsed, kPxtInternalUsed},   {&PxtEntry::internalForce, kPxtInternalForce},
    {&PxtEntry::internalTag, kPxtInternalTag},     {&PxtEntry::externalUsed, kPxtExternalUsed},
    {&PxtEntry::externalForce, kPxtExternalForce}, {&PxtEntry::externalTag, kPxtExternalTag},
};

std::uint8_t SwitchBits(const PxtEntry& entry) {
  unsigned bits = 0;
  for (const Switch& row : kSwitches) {
    if (entry.*row.member != 0) bits |= row.field.Mask();
  }
  return static_cast<std::uint8_t>(bits);
}

/// Stores the index with everything else off and runs the read.
DriverStatus ReadWindow(unsigned index) {
  Write(kPxtFlags, kPxtIndex.Put(index));
  return RunEngine(kReadEntry);
}

}  // namespace

DriverStatus PxtRead(unsigned index, PxtEntry& entry) {
  if (index >= kPxtEntries) return DriverStatus::kRefused;
  const DriverStatus status = ReadWindow(index);
  if (Failed(status)) return status;

  ReadBytes(kPxtInternalMac, entry.internalMac);
  ReadBytes(kPxtExternalMac, entry.externalMac);
  entry.internalSessionId = NumberToId(Read(kPxtInternalSession));
  entry.externalSessionId = NumberToId(Read(kPxtExternalSession));
  entry.internalVlanId = NumberToId(Read(kPxtInternalVlan));
  entry.externalVlanId = NumberToId(Read(kPxtExternalVlan));
  const std::uint8_t bits = Read(kPxtSwitches);
  for (const Switch& row : kSwitches) entry.*row.member = row.field.Get(bits);
  const std::uint8_t flags = Read(kPxtFlags);
  entry.port = kPxtPort.Get(flags);
  entry.valid = kPxtValid.Get(flags);
  return DriverStatus::kOk;
}

DriverStatus PxtWrite(unsigned index, const PxtEntry& entry) {
  if (index >= kPxtEntries) return DriverStatus::kRefused;
  IrqState saved;
  IrqLock(&saved);
  WriteBytes(kPxtInternalMac, entry.internalMac);
  WriteBytes(kPxtExternalMac, entry.externalMac);
  Write(kPxtInternalSession, IdToRegister(entry.internalSessionId));
  Write(kPxtExternalSession, IdToRegister(entry.externalSessionId));
  Write(kPxtInternalVlan, IdToRegister(entry.internalVlanId));
  Write(kPxtExternalVlan, IdToRegister(entry.externalVlanId));
  Write(kPxtSwitches, SwitchBits(entry));
  Write(kPxtFlags, static_cast<std::uint8_t>(kPxtIndex.Put(index) | kPxtPort.Put(entry.port) |
                                             kPxtValid.Mask()));
  return RunEngineUnlocking(kWriteEntry, saved);
}

DriverStatus PxtDelete(unsigned index) {
  if (index >= kPxtEntries) return DriverStatus::kRefused;
  const DriverStatus status = ReadWindow(index);
  if (Failed(status)) return status;

  IrqState saved;
  IrqLock(&saved);
  ClearBits(kPxtFlags, kPxtValid);
  return RunEngineUnlocking(kWriteEntry, saved);
}

DriverStatus PxtSetUsed(unsigned index, std::uint8_t internal_used, std::uint8_t external_used) {
  PxtEntry entry{};
  if (Failed(PxtRead(index, entry))) return DriverStatus::kRefused;
  entry.internalUsed = internal_used != 0 ? 1 : 0;
  entry.externalUsed = external_used != 0 ? 1 : 0;
  for (RecordId* const id : {&entry.internalSessionId, &entry.externalSessionId,
                             &entry.internalVlanId, &entry.externalVlanId}) {
    *id = SwapId(*id);
  }
  return Failed(PxtWrite(index, entry)) ? DriverStatus::kRefused : DriverStatus::kOk;
}

}  // namespace monitor
