// The ARP table of the model and its engine: 64 bindings with reference bits.
#pragma once

#include "chip/indexed_table.h"
#include "tables/arp_registers.h"

namespace chip {

struct ArpBinding {
  std::uint32_t ip = 0;
  std::array<std::uint8_t, 6> mac{};
  bool valid = false;

  bool operator==(const ArpBinding&) const = default;

  template <typename Entry, typename Visit>
  static void List(Entry& binding, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    visit(kArpIp, As<kAddress>("ip", binding.ip));
    visit(kArpMac, As<kMac>("mac", binding.mac));
    visit(kArpFlags, As<kFlag>(kArpValid, binding.valid));
  }
};

struct ArpTableFacts : SeparateIndex {
  using Entry = ArpBinding;
  static constexpr const char* kName = "arp";
  static constexpr monitor::Reg8 kCommand = monitor::kArpCommand;
  static constexpr monitor::Reg8 kIndex = monitor::kArpIndex;
  static constexpr monitor::Field kIndexBits{5, 0};
  static constexpr monitor::RegBytes<8> kMap = monitor::kArpReference;
  static constexpr const char* kMapName = "reference";  ///< Which entries have been used.
};

using ArpTable = IndexedTable<ArpTableFacts>;

}  // namespace chip
