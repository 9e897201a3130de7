// Layer-3 routes: 64 slots accessed through an index, data registers and a command byte. Each slot
// has a 32-bit counter; one map shows which counters have overflowed. The engine reports no result:
// a finished step counts as success. Filter switch: bit 6 of the filter control byte.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"
#include "core/entry_map.h"

namespace monitor {

inline constexpr unsigned kRouteSlots = 64;

/// One route. Addresses are host integers, the first dotted part most significant.
struct L3Route {
  std::uint32_t ip;
  std::uint8_t mask;  ///< Length, 0 to 32.
  std::uint32_t nextHop;
  std::uint8_t port;    ///< A port code.
  std::uint8_t direct;  ///< 0 or 1.
  std::uint8_t wanMac;  ///< 0 or 1.
  std::uint8_t pppoe;   ///< 1 PPPoE, 0 IPoE.
  std::uint8_t session;
  std::uint8_t valid;  ///< 0 or 1; filled by reads.
};

// All operations: kNotReady when the engine is busy, kRefused for a slot above 63.

/// Fills `route` from the slot. `port` keeps its value when the slot is invalid; a valid slot
/// whose port bits are not exactly one is kRefused, with what follows the port not filled.
[[nodiscard]] DriverStatus L3Read(unsigned index, L3Route& route);

/// Writes the route and marks it valid. kRefused, with nothing touched, for a mask above 32;
/// kRefused for a bad port, after index, addresses and mask have been stored.
[[nodiscard]] DriverStatus L3Write(unsigned index, const L3Route& route);

/// Marks the slot invalid; the rest of the route stays.
[[nodiscard]] DriverStatus L3Delete(unsigned index);

[[nodiscard]] DriverStatus L3ReadCounter(unsigned index, std::uint32_t& value);
[[nodiscard]] DriverStatus L3WriteCounter(unsigned index, std::uint32_t value);

/// Reads the overflow bits of all slots.
[[nodiscard]] DriverStatus L3CheckOverflow(EntryMap& map);

/// Clears the overflow bits that are 1 in `map`.
[[nodiscard]] DriverStatus L3ClearOverflow(const EntryMap& map);

/// The L3 filter switch, 0 or 1. Always kOk.
DriverStatus L3ReadFilter(std::uint8_t& on);
DriverStatus L3WriteFilter(std::uint8_t on);

/// Prints the route as slot `index`.
void L3RoutePrint(const L3Route& route, unsigned index);

/// The `l3` command.
int L3Command(int argc, ArgVector argv);

}  // namespace monitor
