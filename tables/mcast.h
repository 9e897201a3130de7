// Multicast groups: 64 slots accessed through an engine like that of the L3 routes, each a group
// address and its member ports, with a 32-bit counter and an overflow bit. Flood control: bit 3 of
// the filter control byte.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"
#include "core/entry_map.h"

namespace monitor {

inline constexpr unsigned kMcastSlots = 64;

/// One group. The address is a host integer, the first dotted part most significant.
struct McastEntry {
  std::uint32_t ip;
  std::uint8_t ports;  ///< A set of port codes, possibly empty.
  std::uint8_t valid;  ///< 0 or 1; filled by reads.
};

/// The switches of the table. No register holds the filter: it lives in the record only.
struct McastSettings {
  std::uint8_t flood;   ///< 0 or 1: flood control.
  std::uint8_t filter;  ///< 0 or 1: filter of packets that miss the table.
};

// All operations: kNotReady when the engine is busy, kRefused for a slot above 63.

[[nodiscard]] DriverStatus McastRead(unsigned index, McastEntry& entry);

/// Writes the group and marks it valid. kRefused, with nothing touched, for ports above 0xF.
[[nodiscard]] DriverStatus McastWrite(unsigned index, const McastEntry& entry);

/// Marks the slot invalid; address and ports stay.
[[nodiscard]] DriverStatus McastDelete(unsigned index);

[[nodiscard]] DriverStatus McastReadCounter(unsigned index, std::uint32_t& value);
[[nodiscard]] DriverStatus McastWriteCounter(unsigned index, std::uint32_t value);

/// Reads the overflow bits of all slots.
[[nodiscard]] DriverStatus McastCheckOverflow(EntryMap& map);

/// Clears the overflow bits that are 1 in `map`.
[[nodiscard]] DriverStatus McastClearOverflow(const EntryMap& map);

/// Reads or writes the flood switch; the filter is left alone. Always kOk.
DriverStatus McastReadFlood(McastSettings& settings);
DriverStatus McastWriteFlood(const McastSettings& settings);

/// Prints the group as slot `index`.
void McastEntryPrint(const McastEntry& entry, unsigned index);

/// The `mcast` command.
int McastCommand(int argc, ArgVector argv);

}  // namespace monitor
