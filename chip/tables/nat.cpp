#include "chip/tables/nat.h"

#include "tables/nat_config_registers.h"
#include "tables/nat_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

/// The byte of valid bits of eight slots, the first at bit 0.
std::uint8_t ValidByte(std::span<const NatTables::Entry, 8> entries) {
  unsigned bits = 0;
  for (unsigned i = 0; i < entries.size(); ++i) bits |= entries[i].valid ? 1U << i : 0U;
  return static_cast<std::uint8_t>(bits);
}

}  // namespace

NatTables::NatTables(RegisterFile& registers)
    : engine(registers, "nat", kNatCommand, BitsOf(kNatEngine),
             [this](std::uint8_t command) { return Run(command); }),
      registers_(registers) {
  ClaimEntry();
  ClaimValidBits();
  ClaimSettings();
}

void NatTables::ClaimEntry() {
  registers_.Define(kNatSip);
  registers_.Define(kNatSport);
  registers_.Define(kNatNsport);
  registers_.Define(kNatDip);
  registers_.Define(kNatDport);
  registers_.Define(kNatAge);
  registers_.Define(kNatIndex);
  registers_.Define(kNatControl);
  registers_.Define(kNatNsip);
}

void NatTables::ClaimValidBits() {
  const auto follow = [this](Reg8 reg, std::span<const Entry, 8> entries) {
    registers_.Define(reg, {.read_only = 0xFF, .before_load = [this, reg, entries] {
                              registers_.Set(reg, ValidByte(entries));
                            }});
  };
  const std::span<const Entry, kSlots> mains(main);
  const std::span<const Entry, kServerSlots> servers(server);
  for (unsigned i = 0; i < kSlots / 8; ++i) {
    follow(kNatValid[i], mains.subspan(8 * i).first<8>());
  }
  for (unsigned i = 0; i < kServerSlots / 8; ++i) {
    follow(kNatServerValid[i], servers.subspan(8 * i).first<8>());
  }
}

void NatTables::ClaimSettings() {
  registers_.Define(kNatIp);
  registers_.Define(kNatPortPrefix);
  registers_.Define(kNatFlags);
  registers_.Define(kNatDefaultAge);
  registers_.Define(kNatFinAge);
}

void NatTables::Reset() {
  main.fill({});
  server.fill({});
  engine.Reset();
}

NatTables::Entry* NatTables::Selected() {
  const unsigned index = registers_.Get(kNatIndex);
  if (kNatServerTable.Get(registers_.Get(kNatControl)) == 0) return &main[index];
  return index < kServerSlots ? &server[index] : nullptr;
}

bool NatTables::Run(std::uint8_t command) {
  Entry* const entry = Selected();
  if (entry == nullptr) return false;
  if (kNatWrite.Get(command) == 0) {
    LoadWindow(*entry);
    return true;
  }
  if (kNatStoreValid.Get(command) != 0) return WriteWindow(*entry);
  entry->valid = false;
  return true;
}

void NatTables::LoadWindow(const Entry& entry) {
  registers_.Set(kNatSip, entry.sip);
  registers_.Set(kNatSport, entry.sport);
  registers_.Set(kNatNsport, entry.nsport);
  registers_.Set(kNatDip, entry.dip);
  registers_.Set(kNatDport, entry.dport);
  registers_.Set(kNatAge, entry.age);
  registers_.Set(kNatNsip, entry.nsip);
  const unsigned table = registers_.Get(kNatControl) & kNatServerTable.Mask();
  registers_.Set(kNatControl, table | kNatInsideServer.Put(entry.server ? 1 : 0) |
                                  kNatTcp.Put(entry.tcp ? 1 : 0));
}

bool NatTables::WriteWindow(Entry& entry) {
  const std::uint32_t dip = registers_.Get(kNatDip);
  const std::uint16_t dport = registers_.Get(kNatDport);
  if (entry.valid && (entry.dip != dip || entry.dport != dport)) return false;
  const std::uint8_t control = registers_.Get(kNatControl);
  entry = {.sip = registers_.Get(kNatSip),
           .sport = registers_.Get(kNatSport),
           .dip = dip,
           .dport = dport,
           .tcp = kNatTcp.Get(control) != 0,
           .nsip = registers_.Get(kNatNsip),
           .nsport = registers_.Get(kNatNsport),
           .age = registers_.Get(kNatAge),
           .server = kNatInsideServer.Get(control) != 0,
           .valid = true};
  return true;
}

void NatTables::State(StateArchive& archive) {
  const auto list = [&](Entry& entry) {
    archive.Hex("sip", entry.sip);
    archive.Hex("sport", entry.sport);
    archive.Hex("dip", entry.dip);
    archive.Hex("dport", entry.dport);
    archive.Flag("tcp", entry.tcp);
    archive.Hex("nsip", entry.nsip);
    archive.Hex("nsport", entry.nsport);
    archive.Hex("age", entry.age);
    archive.Flag("server", entry.server);
    archive.Flag("valid", entry.valid);
  };
  archive.Table("main", main, list);
  archive.Table("server", server, list);
  engine.State(archive);
}

}  // namespace chip
