#include "pppoe/pppoe_session.h"

#include "pppoe/pppoe_session_registers.h"

namespace monitor {
namespace {

// A write ends its pulse with a fixed value: start cleared, write and read ready as ones.
constexpr EngineStep kReadEntry{kPstCommand, 0x04, 0xF6, kEngineReadReady};
constexpr EngineStep kWriteEntry{kPstCommand,       0x0C,         0xFD,
                                 kEngineWriteReady, kEngineStart, {true, 0x09}};

unsigned Bit(Field field, std::uint8_t on) { return on != 0 ? field.Mask() : 0U; }

/// Stores the index with all switches off and runs the read.
DriverStatus ReadWindow(unsigned index) {
  Write(kPstFlags, kPstIndex.Put(index));
  return RunEngine(kReadEntry);
}

}  // namespace

DriverStatus PstRead(unsigned index, PstEntry& entry) {
  if (index >= kPstEntries) return DriverStatus::kRefused;
  const DriverStatus status = ReadWindow(index);
  if (Failed(status)) return status;

  entry.ip = Read(kPstIp);
  entry.sessionId = NumberToId(Read(kPstSession));
  entry.vlanId = NumberToId(Read(kPstVlan));
  ReadBytes(kPstServerMac, entry.serverMac);
  const std::uint8_t flags = Read(kPstFlags);
  entry.valid = kPstValid.Get(flags);
  entry.tag = kPstTag.Get(flags);
  entry.force = kPstForce.Get(flags);
  entry.used = kPstUsed.Get(flags);
  return DriverStatus::kOk;
}

DriverStatus PstWrite(unsigned index, const PstEntry& entry) {
  if (index >= kPstEntries) return DriverStatus::kRefused;
  IrqState saved;
  IrqLock(&saved);
  Write(kPstFlags, static_cast<std::uint8_t>(kPstIndex.Put(index) | kPstValid.Mask() |
                                             Bit(kPstTag, entry.tag) | Bit(kPstForce, entry.force) |
                                             Bit(kPstUsed, entry.used)));
  Write(kPstIp, entry.ip);
  Write(kPstSession, IdToRegister(entry.sessionId));
  Write(kPstVlan, IdToRegister(entry.vlanId));
  WriteBytes(kPstServerMac, entry.serverMac);
  return RunEngineUnlocking(kWriteEntry, saved);
}

DriverStatus PstDelete(unsigned index) {
  if (index >= kPstEntries) return DriverStatus::kRefused;
  const DriverStatus status = ReadWindow(index);
  if (Failed(status)) return status;

  IrqState saved;
  IrqLock(&saved);
  ClearBits(kPstFlags, kPstValid);
  return RunEngineUnlocking(kWriteEntry, saved);
}

DriverStatus PstClear(unsigned index) {
  PstEntry entry{};
  if (Failed(PstRead(index, entry))) return DriverStatus::kRefused;
  entry.used = 0;
  // The IDs go back as the read left them, so their bytes change places.
  return Failed(PstWrite(index, entry)) ? DriverStatus::kRefused : DriverStatus::kOk;
}

}  // namespace monitor
