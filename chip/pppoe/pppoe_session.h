// The PPPoE session table of the model and its engine: four entries.
#pragma once

#include "chip/indexed_table.h"
#include "pppoe/pppoe_session_registers.h"

namespace chip {

struct PppoeSession {
  std::uint32_t ip = 0;
  std::uint16_t session = 0;
  std::uint16_t vlan = 0;
  std::array<std::uint8_t, 6> server_mac{};
  bool force = false;
  bool tag = false;
  bool used = false;
  bool valid = false;

  bool operator==(const PppoeSession&) const = default;

  template <typename Entry, typename Visit>
  static void List(Entry& session, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    visit(kPstIp, As<kAddress>("ip", session.ip));
    visit(kPstSession, As<kHex>("session", session.session));
    visit(kPstVlan, As<kHex>("vlan", session.vlan));
    visit(kPstServerMac, As<kMac>("server_mac", session.server_mac));
    visit(kPstFlags, Kept{kPstIndex}, As<kFlag>(kPstForce, session.force),
          As<kFlag>(kPstTag, session.tag), As<kFlag>(kPstUsed, session.used),
          As<kFlag>(kPstValid, session.valid));
  }
};

struct PppoeSessionTableFacts : SharedIndex {
  using Entry = PppoeSession;
  static constexpr const char* kName = "pst";
  static constexpr monitor::Reg8 kCommand = monitor::kPstCommand;
  static constexpr monitor::Reg8 kIndex = monitor::kPstFlags;
  static constexpr monitor::Field kIndexBits = monitor::kPstIndex;
};

using PppoeSessionTable = IndexedTable<PppoeSessionTableFacts>;

}  // namespace chip
