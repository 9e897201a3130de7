#include "chip/tables/mcast.h"

#include "chip/tables/map_bits.h"
#include "tables/mcast_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

McastTable::McastTable(RegisterFile& registers)
    : engine(registers, "mcast", kMcastCommand, kTableEngineBits,
             [this](std::uint8_t command) { return Run(kEngineWrite.Get(command) != 0); }),
      registers_(registers) {
  engine.on_end = [this] { stored_ = {}; };
  Claim();
}

void McastTable::Claim() {
  const auto entry = [this](std::uint32_t) { stored_.entry = true; };
  registers_.Define(kMcastIp, {.after_store = entry});
  registers_.Define(kMcastFlags, {.after_store = entry});
  registers_.Define(kMcastIndex);
  registers_.Define(kMcastOverflow,
                    {.after_store = [this](std::uint32_t) { stored_.overflow = true; }});
  registers_.Define(kMcastCounter,
                    {.after_store = [this](std::uint32_t) { stored_.counter = true; }});
}

void McastTable::Reset() {
  entries.fill({});
  overflow.fill(0);
  stored_ = {};
  engine.Reset();
}

bool McastTable::Run(bool write) {
  Entry& entry = entries[registers_.Get(kMcastIndex) % kSlots];
  if (write) {
    ApplyWindow(entry);
  } else {
    LoadWindow(entry);
  }
  return true;
}

void McastTable::LoadWindow(const Entry& entry) {
  registers_.Set(kMcastIp, entry.ip);
  registers_.Set(kMcastFlags, kMcastPorts.Put(entry.ports) | kMcastValid.Put(entry.valid ? 1 : 0));
  registers_.Set(kMcastOverflow, overflow);
  registers_.Set(kMcastCounter, entry.counter);
}

void McastTable::ApplyWindow(Entry& entry) {
  if (stored_.entry) {
    const std::uint8_t flags = registers_.Get(kMcastFlags);
    entry.ip = registers_.Get(kMcastIp);
    entry.ports = kMcastPorts.Get(flags);
    entry.valid = kMcastValid.Get(flags) != 0;
  }
  if (stored_.counter) entry.counter = registers_.Get(kMcastCounter);
  if (stored_.overflow) ClearEntryBits(overflow, registers_.Get(kMcastOverflow));
}

void McastTable::State(StateArchive& archive) {
  archive.Table("entries", entries, [&](Entry& entry) {
    archive.Hex("ip", entry.ip);
    archive.Hex("ports", entry.ports, std::uint8_t{0x0F});
    archive.Flag("valid", entry.valid);
    archive.Count("counter", entry.counter);
  });
  archive.Bytes("overflow", overflow);
  archive.Group("stored_since_start", [&] {
    archive.Flag("entry", stored_.entry);
    archive.Flag("counter", stored_.counter);
    archive.Flag("overflow", stored_.overflow);
  });
  engine.State(archive);
}

}  // namespace chip
