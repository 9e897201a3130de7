#include "chip/tables/nat.h"

#include "tables/nat_config_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

/// The byte of valid bits of eight slots, the first at bit 0.
std::uint8_t ValidByte(std::span<const NatEntry, 8> entries) {
  unsigned bits = 0;
  for (unsigned i = 0; i < entries.size(); ++i) bits |= entries[i].valid ? 1U << i : 0U;
  return static_cast<std::uint8_t>(bits);
}

}  // namespace

NatTables::NatTables(RegisterFile& registers)
    : engine(registers, "nat", kNatCommand, BitsOf(kNatEngine),
             [this](std::uint8_t command) { return Run(command); }),
      registers_(registers) {
  // A write applies the window as it stands, so nothing has to be noted.
  main.Claim(registers, [](bool /*counter*/) { return nullptr; });
  registers.Define(kNatIndex);
  ClaimValidBits(kNatValid, main);
  ClaimValidBits(kNatServerValid, server);
  ClaimSettings();
}

template <std::size_t N, typename Table>
void NatTables::ClaimValidBits(RegBytes<N> regs, const Table& table) {
  static_assert(Table::kSlots == 8 * N);
  for (unsigned i = 0; i < N; ++i) {
    const Reg8 reg = regs[i];
    const auto entries = std::span(table.Entries()).subspan(8 * i).template first<8>();
    registers_.Define(reg, {.read_only = 0xFF, .before_load = [this, reg, entries] {
                              registers_.Set(reg, ValidByte(entries));
                            }});
  }
}

void NatTables::ClaimSettings() {
  registers_.Define(kNatIp, {.notation = Notation::kAddress});
  registers_.Define(kNatPortPrefix);
  registers_.Define(kNatFlags);
  registers_.Define(kNatDefaultAge);
  registers_.Define(kNatFinAge);
}

void NatTables::Reset() {
  main.Clear();
  server.Clear();
  engine.Reset();
}

bool NatTables::Run(std::uint8_t command) {
  const bool on_server = kNatServerTable.Get(registers_.Get(kNatControl)) != 0;
  return on_server ? RunOn(server, command) : RunOn(main, command);
}

template <typename Table>
bool NatTables::RunOn(Table& table, std::uint8_t command) {
  const unsigned index = registers_.Get(kNatIndex);
  if (index >= Table::kSlots) return false;
  if (kNatWrite.Get(command) == 0) {
    table.Load(registers_, index);
    return true;
  }
  const bool valid = kNatStoreValid.Get(command) != 0;
  if (valid) {
    const NatEntry& old = table.Entries()[index];
    const bool same = old.dip == registers_.Get(kNatDip) && old.dport == registers_.Get(kNatDport);
    if (old.valid && !same) return false;
    table.Apply(registers_, index, {.entry = true});
  }
  table.Change(index).valid = valid;
  return true;
}

void NatTables::State(StateArchive& archive) {
  main.State(archive, "main");
  server.State(archive, "server");
  engine.State(archive);
}

}  // namespace chip
