// The NAT tables of the model, main and server, with the NAT engine, and the storage of the
// engine's settings.
#pragma once

#include "chip/block.h"
#include "chip/engine.h"
#include "chip/entry_table.h"
#include "tables/nat_registers.h"

namespace chip {

struct NatEntry {
  std::uint32_t sip = 0;
  std::uint16_t sport = 0;
  std::uint32_t dip = 0;
  std::uint16_t dport = 0;
  bool tcp = false;  ///< TCP, else UDP.
  std::uint32_t nsip = 0;
  std::uint16_t nsport = 0;
  std::uint16_t age = 0;  ///< In 0.1 s.
  bool server = false;    ///< Inside server.
  bool valid = false;

  bool operator==(const NatEntry&) const = default;

  template <typename Entry, typename Visit>
  static void List(Entry& entry, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    visit(kNatSip, As<kAddress>("sip", entry.sip));
    visit(kNatSport, As<kHex>("sport", entry.sport));
    visit(kNatNsport, As<kHex>("nsport", entry.nsport));
    visit(kNatDip, As<kAddress>("dip", entry.dip));
    visit(kNatDport, As<kHex>("dport", entry.dport));
    visit(kNatAge, As<kNumber>("age", entry.age));
    visit(kNatControl, Kept{kNatServerTable}, As<kFlag>(kNatTcp, entry.tcp),
          As<kFlag>(kNatInsideServer, entry.server));
    visit(kNatNsip, As<kAddress>("nsip", entry.nsip));
    visit(NoRegister{}, As<kFlag>("valid", entry.valid));
  }
};

class NatTables : public Block {
 public:
  explicit NatTables(RegisterFile& registers);
  NatTables(const NatTables&) = delete;
  NatTables& operator=(const NatTables&) = delete;

  [[nodiscard]] const char* Name() const override { return "nat"; }
  void Reset() override;
  void State(StateArchive& archive) override;
  [[nodiscard]] std::vector<FaultPoint*> FaultPoints() override { return {&engine}; }

  EntryTable<NatEntry, 256> main;
  EntryTable<NatEntry, 16> server;
  Engine engine;

 private:
  template <std::size_t N, typename Table>
  void ClaimValidBits(monitor::RegBytes<N> regs, const Table& table);
  void ClaimSettings();
  bool Run(std::uint8_t command);
  /// Carries a step out on the slot under the index; false where there is none.
  template <typename Table>
  bool RunOn(Table& table, std::uint8_t command);

  RegisterFile& registers_;
};

}  // namespace chip
