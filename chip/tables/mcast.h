// The multicast table of the model and its engine: 64 groups with counters and overflow bits.
#pragma once

#include "chip/indexed_table.h"
#include "tables/mcast_registers.h"

namespace chip {

struct McastGroup {
  std::uint32_t ip = 0;
  std::uint8_t ports = 0;  ///< Members: 1 WAN, 2 LAN, 4 DMZ, 8 CPU.
  bool valid = false;
  std::uint32_t counter = 0;

  bool operator==(const McastGroup&) const = default;

  template <typename Entry, typename Visit>
  static void List(Entry& group, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    visit(kMcastIp, As<kAddress>("ip", group.ip));
    visit(kMcastFlags, As<kPorts>(kMcastPorts, group.ports), As<kFlag>(kMcastValid, group.valid));
    visit(kMcastCounter, As<kCounter>("counter", group.counter));
  }
};

struct McastTableFacts : SeparateIndex {
  using Entry = McastGroup;
  static constexpr const char* kName = "mcast";
  static constexpr monitor::Reg8 kCommand = monitor::kMcastCommand;
  static constexpr monitor::Reg8 kIndex = monitor::kMcastIndex;
  static constexpr monitor::Field kIndexBits{5, 0};
  static constexpr monitor::RegBytes<8> kMap = monitor::kMcastOverflow;
  static constexpr const char* kMapName = "overflow";
};

using McastTable = IndexedTable<McastTableFacts>;

}  // namespace chip
