// The route table of the model and its engine: 64 slots with counters and overflow bits.
#pragma once

#include "chip/indexed_table.h"
#include "tables/l3_route_registers.h"

namespace chip {

struct Route {
  std::uint32_t ip = 0;
  std::uint8_t mask = 0;  ///< Length of the prefix, as it was written.
  std::uint32_t next_hop = 0;
  std::uint8_t port = 0;  ///< Usually one bit: 1 WAN, 2 LAN, 4 DMZ, 8 CPU.
  bool pppoe = false;     ///< PPPoE, else IPoE.
  std::uint8_t session = 0;
  bool direct = false;
  bool wan_mac = false;
  bool valid = false;
  std::uint8_t flags_rest = 0;
  std::uint32_t counter = 0;

  bool operator==(const Route&) const = default;

  template <typename Entry, typename Visit>
  static void List(Entry& route, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    visit(kRouteIp, As<kAddress>("ip", route.ip));
    visit(kRouteMask, As<kNumber>("mask", route.mask));
    visit(kRouteEncapsulation, As<kFlag>(kRoutePppoe, route.pppoe),
          As<kNumber>(kRouteSession, route.session));
    visit(kRouteNextHop, As<kAddress>("next_hop", route.next_hop));
    visit(kRouteFlags, As<kPorts>(kRoutePort, route.port), As<kFlag>(kRouteDirect, route.direct),
          As<kFlag>(kRouteWanMac, route.wan_mac), As<kFlag>(kRouteValid, route.valid),
          As<kRest>({"flags_rest", {7, 7}}, route.flags_rest));
    visit(kRouteCounter, As<kCounter>("counter", route.counter));
  }
};

struct RouteTableFacts : SeparateIndex {
  using Entry = Route;
  static constexpr const char* kName = "l3";
  static constexpr monitor::Reg8 kCommand = monitor::kRouteCommand;
  static constexpr monitor::Reg8 kIndex = monitor::kRouteIndex;
  static constexpr monitor::Field kIndexBits{5, 0};
  static constexpr monitor::RegBytes<8> kMap = monitor::kRouteOverflow;
  static constexpr const char* kMapName = "overflow";
};

using L3RouteTable = IndexedTable<RouteTableFacts>;

}  // namespace chip
