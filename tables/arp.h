// The ARP table: 64 slots, each binding an IPv4 address to a MAC address, accessed through an
// index, data registers and a command byte. The chip sets a reference bit when it uses an entry.
// Filter switch: bit 7 of the filter control byte.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"
#include "core/entry_map.h"

namespace monitor {

inline constexpr unsigned kArpSlots = 64;

/// One binding. The address is a host integer, the first dotted part most significant.
struct ArpEntry {
  std::uint32_t ip;
  MacAddress mac;
  std::uint8_t valid;  ///< 0 or 1; filled by reads.
};

// All operations: kNotReady when the engine is busy, kRefused for a slot above 63. Only the low
// 16 bits of a slot number count.

[[nodiscard]] DriverStatus ArpRead(unsigned index, ArpEntry& entry);

/// Writes the binding and marks it valid.
[[nodiscard]] DriverStatus ArpWrite(unsigned index, const ArpEntry& entry);

/// Marks the slot invalid; the addresses stay.
[[nodiscard]] DriverStatus ArpDelete(unsigned index);

/// Reads the reference bits of all slots.
[[nodiscard]] DriverStatus ArpReadReference(EntryMap& map);

/// Clears the reference bits that are 1 in `map`.
[[nodiscard]] DriverStatus ArpClearReference(const EntryMap& map);

/// The ARP filter switch, 0 or 1. Always kOk.
DriverStatus ArpReadFilter(std::uint8_t& on);
DriverStatus ArpWriteFilter(std::uint8_t on);

/// Prints the binding as slot `index`.
void ArpEntryPrint(const ArpEntry& entry, unsigned index);

/// The `arp` command.
int ArpCommand(int argc, ArgVector argv);

}  // namespace monitor
