#include "chip/pppoe/pxt.h"

#include "pppoe/pxt_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

constexpr std::uint8_t kExistingSwitches = kPxtExternalTag.Mask() | kPxtExternalForce.Mask() |
                                           kPxtExternalUsed.Mask() | kPxtInternalTag.Mask() |
                                           kPxtInternalForce.Mask() | kPxtInternalUsed.Mask();
constexpr std::uint8_t kEntryFlags = kPxtPort.Mask() | kPxtValid.Mask();

}  // namespace

PxtTable::PxtTable(RegisterFile& registers)
    : engine(registers, "pxt", kPxtCommand, kTableEngineBits,
             [this](std::uint8_t command) { return Run(kEngineWrite.Get(command) != 0); }),
      registers_(registers) {
  registers.Define(kPxtInternalMac);
  registers.Define(kPxtExternalMac);
  registers.Define(kPxtInternalSession);
  registers.Define(kPxtExternalSession);
  registers.Define(kPxtInternalVlan);
  registers.Define(kPxtExternalVlan);
  registers.Define(kPxtSwitches);
  registers.Define(kPxtFlags);
}

void PxtTable::Reset() {
  entries.fill({});
  engine.Reset();
}

bool PxtTable::Run(bool write) {
  const std::uint8_t flags = registers_.Get(kPxtFlags);
  Entry& entry = entries[kPxtIndex.Get(flags)];
  if (write) {
    ApplyWindow(entry);
  } else {
    LoadWindow(entry, flags & kPxtIndex.Mask());
  }
  return true;
}

void PxtTable::LoadWindow(const Entry& entry, std::uint8_t index_bits) {
  registers_.Set(kPxtInternalMac, entry.internal_mac);
  registers_.Set(kPxtExternalMac, entry.external_mac);
  registers_.Set(kPxtInternalSession, entry.internal_session);
  registers_.Set(kPxtExternalSession, entry.external_session);
  registers_.Set(kPxtInternalVlan, entry.internal_vlan);
  registers_.Set(kPxtExternalVlan, entry.external_vlan);
  registers_.Set(kPxtSwitches, entry.switches);
  registers_.Set(kPxtFlags, index_bits | entry.flags);
}

void PxtTable::ApplyWindow(Entry& entry) {
  entry.internal_mac = registers_.Get(kPxtInternalMac);
  entry.external_mac = registers_.Get(kPxtExternalMac);
  entry.internal_session = registers_.Get(kPxtInternalSession);
  entry.external_session = registers_.Get(kPxtExternalSession);
  entry.internal_vlan = registers_.Get(kPxtInternalVlan);
  entry.external_vlan = registers_.Get(kPxtExternalVlan);
  entry.switches = registers_.Get(kPxtSwitches) & kExistingSwitches;
  entry.flags = registers_.Get(kPxtFlags) & kEntryFlags;
}

void PxtTable::State(StateArchive& archive) {
  archive.Table("entries", entries, [&](Entry& entry) {
    archive.Bytes("internal_mac", entry.internal_mac);
    archive.Bytes("external_mac", entry.external_mac);
    archive.Hex("internal_session", entry.internal_session);
    archive.Hex("external_session", entry.external_session);
    archive.Hex("internal_vlan", entry.internal_vlan);
    archive.Hex("external_vlan", entry.external_vlan);
    archive.Hex("switches", entry.switches, kExistingSwitches);
    archive.Hex("flags", entry.flags, kEntryFlags);
  });
  engine.State(archive);
}

}  // namespace chip
