// The PXT table of the model and its engine: four entries.
#pragma once

#include "chip/indexed_table.h"
#include "pppoe/pxt_registers.h"

namespace chip {

struct PxtEntry {
  /// One side of the relay.
  struct Side {
    std::array<std::uint8_t, 6> mac{};
    std::uint16_t session = 0;
    std::uint16_t vlan = 0;
    bool tag = false;
    bool force = false;
    bool used = false;

    bool operator==(const Side&) const = default;
  };

  Side internal;
  Side external;
  std::uint8_t port = 0;  ///< Internal port: 2 DMZ, else LAN.
  bool valid = false;

  bool operator==(const PxtEntry&) const = default;

  template <typename Entry, typename Visit>
  static void List(Entry& entry, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    auto& internal = entry.internal;
    auto& external = entry.external;
    visit(kPxtInternalMac, As<kMac>("internal_mac", internal.mac));
    visit(kPxtExternalMac, As<kMac>("external_mac", external.mac));
    visit(kPxtInternalSession, As<kHex>("internal_session", internal.session));
    visit(kPxtExternalSession, As<kHex>("external_session", external.session));
    visit(kPxtInternalVlan, As<kHex>("internal_vlan", internal.vlan));
    visit(kPxtExternalVlan, As<kHex>("external_vlan", external.vlan));
    visit(kPxtSwitches, As<kFlag>(kPxtInternalTag, internal.tag),
          As<kFlag>(kPxtInternalForce, internal.force), As<kFlag>(kPxtInternalUsed, internal.used),
          As<kFlag>(kPxtExternalTag, external.tag), As<kFlag>(kPxtExternalForce, external.force),
          As<kFlag>(kPxtExternalUsed, external.used));
    visit(kPxtFlags, Kept{kPxtIndex}, As<kRelayed>(kPxtPort, entry.port),
          As<kFlag>(kPxtValid, entry.valid));
  }
};

struct PxtTableFacts : SharedIndex {
  using Entry = PxtEntry;
  static constexpr const char* kName = "pxt";
  static constexpr monitor::Reg8 kCommand = monitor::kPxtCommand;
  static constexpr monitor::Reg8 kIndex = monitor::kPxtFlags;
  static constexpr monitor::Field kIndexBits = monitor::kPxtIndex;
};

using PxtTable = IndexedTable<PxtTableFacts>;

}  // namespace chip
