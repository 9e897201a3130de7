#include "pppoe/pdr.h"

#include "pppoe/pdr_registers.h"

namespace monitor {
namespace {

// A write ends its pulse with a fixed value: start cleared, write and read ready as ones.
constexpr EngineStep kReadEntry{kPdrCommand, 0x04, 0xF6, kEngineReadReady};
constexpr EngineStep kWriteEntry{kPdrCommand,       0x0C,         0xFD,
                                 kEngineWriteReady, kEngineStart, {true, 0x09}};

void SelectEntry(unsigned index) { Write(kPdrIndex, static_cast<std::uint8_t>(index)); }

}  // namespace

DriverStatus PdrRead(unsigned index, PdrEntry& entry) {
  if (index >= kPdrEntries) return DriverStatus::kRefused;
  SelectEntry(index);
  // This read alone starts the engine without checking that it is ready.
  PulseEngine(kReadEntry);
  const DriverStatus status = AwaitEngine(kReadEntry);
  if (Failed(status)) return status;

  entry.ip = Read(kPdrIp);
  const std::uint8_t flags = Read(kPdrFlags);
  entry.valid = kPdrValid.Get(flags);
  entry.pppoe = kPdrPppoe.Get(flags);
  entry.sessionNumber = kPdrSession.Get(flags);
  return DriverStatus::kOk;
}

DriverStatus PdrWrite(unsigned index, const PdrEntry& entry) {
  if (index >= kPdrEntries) return DriverStatus::kRefused;
  IrqState saved;
  IrqLock(&saved);
  Write(kPdrIp, entry.ip);
  const unsigned pppoe = entry.pppoe != 0 ? kPdrPppoe.Mask() : 0U;
  Write(kPdrFlags,
        static_cast<std::uint8_t>(kPdrSession.Put(entry.sessionNumber) | pppoe | kPdrValid.Mask()));
  SelectEntry(index);
  return RunEngineUnlocking(kWriteEntry, saved);
}

DriverStatus PdrDelete(unsigned index) {
  if (index >= kPdrEntries) return DriverStatus::kRefused;
  SelectEntry(index);
  const DriverStatus status = RunEngine(kReadEntry);
  if (Failed(status)) return status;

  IrqState saved;
  IrqLock(&saved);
  ClearBits(kPdrFlags, kPdrValid);
  return RunEngineUnlocking(kWriteEntry, saved);
}

}  // namespace monitor
