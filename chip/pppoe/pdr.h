// The PDR table of the model and its engine: 64 entries.
#pragma once

#include "chip/indexed_table.h"
#include "pppoe/pdr_registers.h"

namespace chip {

struct PdrEntry {
  std::uint32_t ip = 0;
  bool pppoe = false;  ///< PPPoE, else IPoE.
  std::uint8_t session = 0;
  bool valid = false;

  bool operator==(const PdrEntry&) const = default;

  template <typename Entry, typename Visit>
  static void List(Entry& entry, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    visit(kPdrIp, As<kAddress>("ip", entry.ip));
    visit(kPdrFlags, As<kFlag>(kPdrPppoe, entry.pppoe), As<kNumber>(kPdrSession, entry.session),
          As<kFlag>(kPdrValid, entry.valid));
  }
};

struct PdrTableFacts : SeparateIndex {
  using Entry = PdrEntry;
  static constexpr const char* kName = "pdr";
  static constexpr monitor::Reg8 kCommand = monitor::kPdrCommand;
  static constexpr monitor::Reg8 kIndex = monitor::kPdrIndex;
  static constexpr monitor::Field kIndexBits{5, 0};
};

using PdrTable = IndexedTable<PdrTableFacts>;

}  // namespace chip
