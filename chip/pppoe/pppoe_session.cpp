#include "chip/pppoe/pppoe_session.h"

#include "pppoe/pppoe_session_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

constexpr std::uint8_t kSwitches =
    kPstForce.Mask() | kPstTag.Mask() | kPstUsed.Mask() | kPstValid.Mask();

}  // namespace

PppoeSessionTable::PppoeSessionTable(RegisterFile& registers)
    : engine(registers, "pst", kPstCommand, kTableEngineBits,
             [this](std::uint8_t command) { return Run(kEngineWrite.Get(command) != 0); }),
      registers_(registers) {
  registers.Define(kPstIp);
  registers.Define(kPstSession);
  registers.Define(kPstVlan);
  registers.Define(kPstServerMac);
  registers.Define(kPstFlags);
}

void PppoeSessionTable::Reset() {
  entries.fill({});
  engine.Reset();
}

bool PppoeSessionTable::Run(bool write) {
  const std::uint8_t flags = registers_.Get(kPstFlags);
  Entry& entry = entries[kPstIndex.Get(flags)];
  if (write) {
    ApplyWindow(entry);
  } else {
    LoadWindow(entry, flags & kPstIndex.Mask());
  }
  return true;
}

void PppoeSessionTable::LoadWindow(const Entry& entry, std::uint8_t index_bits) {
  registers_.Set(kPstIp, entry.ip);
  registers_.Set(kPstSession, entry.session);
  registers_.Set(kPstVlan, entry.vlan);
  registers_.Set(kPstServerMac, entry.server_mac);
  registers_.Set(kPstFlags, index_bits | entry.flags);
}

void PppoeSessionTable::ApplyWindow(Entry& entry) {
  entry.ip = registers_.Get(kPstIp);
  entry.session = registers_.Get(kPstSession);
  entry.vlan = registers_.Get(kPstVlan);
  entry.server_mac = registers_.Get(kPstServerMac);
  entry.flags = registers_.Get(kPstFlags) & kSwitches;
}

void PppoeSessionTable::State(StateArchive& archive) {
  archive.Table("entries", entries, [&](Entry& entry) {
    archive.Hex("ip", entry.ip);
    archive.Hex("session", entry.session);
    archive.Hex("vlan", entry.vlan);
    archive.Bytes("server_mac", entry.server_mac);
    archive.Hex("flags", entry.flags, kSwitches);
  });
  engine.State(archive);
}

}  // namespace chip
