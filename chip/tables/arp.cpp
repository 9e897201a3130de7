#include "chip/tables/arp.h"

#include "chip/tables/map_bits.h"
#include "tables/arp_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

ArpTable::ArpTable(RegisterFile& registers)
    : engine(registers, "arp", kArpCommand, kTableEngineBits,
             [this](std::uint8_t command) { return Run(kEngineWrite.Get(command) != 0); }),
      registers_(registers) {
  engine.on_end = [this] { stored_ = {}; };
  Claim();
}

void ArpTable::Claim() {
  const auto entry = [this](std::uint32_t) { stored_.entry = true; };
  registers_.Define(kArpIp, {.after_store = entry});
  registers_.Define(kArpMac, {.after_store = entry});
  registers_.Define(kArpIndex);
  registers_.Define(kArpFlags, {.after_store = entry});
  registers_.Define(kArpReference,
                    {.after_store = [this](std::uint32_t) { stored_.reference = true; }});
}

void ArpTable::Reset() {
  entries.fill({});
  reference.fill(0);
  stored_ = {};
  engine.Reset();
}

bool ArpTable::Run(bool write) {
  Entry& entry = entries[registers_.Get(kArpIndex) % kSlots];
  if (write) {
    ApplyWindow(entry);
  } else {
    LoadWindow(entry);
  }
  return true;
}

void ArpTable::LoadWindow(const Entry& entry) {
  registers_.Set(kArpIp, entry.ip);
  registers_.Set(kArpMac, entry.mac);
  registers_.Set(kArpFlags, kArpValid.Put(entry.valid ? 1 : 0));
  registers_.Set(kArpReference, reference);
}

void ArpTable::ApplyWindow(Entry& entry) {
  if (stored_.entry) {
    entry.ip = registers_.Get(kArpIp);
    entry.mac = registers_.Get(kArpMac);
    entry.valid = kArpValid.Get(registers_.Get(kArpFlags)) != 0;
  }
  if (stored_.reference) ClearEntryBits(reference, registers_.Get(kArpReference));
}

void ArpTable::State(StateArchive& archive) {
  archive.Table("entries", entries, [&](Entry& entry) {
    archive.Hex("ip", entry.ip);
    archive.Bytes("mac", entry.mac);
    archive.Flag("valid", entry.valid);
  });
  archive.Bytes("reference", reference);
  archive.Group("stored_since_start", [&] {
    archive.Flag("entry", stored_.entry);
    archive.Flag("reference", stored_.reference);
  });
  engine.State(archive);
}

}  // namespace chip
