#include "pppoe/pdr.h"

#include "core/engine.h"
#include "core/irq_guard.h"
#include "pppoe/pdr_registers.h"

namespace monitor {
namespace {

// A write ends its pulse with a fixed value: start cleared, write and read ready as ones.
constexpr PulseEnd kWriteEnd{true, kEngineWrite.Mask() | kEngineReadReady.Mask()};
constexpr EngineStep kReadEntry = ReadStep(kPdrCommand);
constexpr EngineStep kWriteEntry = WriteStep(kPdrCommand, {}, {}, kWriteEnd);

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
  IrqGuard lock;
  Write(kPdrIp, entry.ip);
  const unsigned pppoe = entry.pppoe != 0 ? kPdrPppoe.Mask() : 0U;
  Write(kPdrFlags,
        static_cast<std::uint8_t>(kPdrSession.Put(entry.sessionNumber) | pppoe | kPdrValid.Mask()));
  SelectEntry(index);
  return RunEngineUnlocking(kWriteEntry, lock);
}

DriverStatus PdrDelete(unsigned index) {
  if (index >= kPdrEntries) return DriverStatus::kRefused;
  SelectEntry(index);
  const DriverStatus status = RunEngine(kReadEntry);
  if (Failed(status)) return status;

  IrqGuard lock;
  ClearBits(kPdrFlags, kPdrValid);
  return RunEngineUnlocking(kWriteEntry, lock);
}

}  // namespace monitor
