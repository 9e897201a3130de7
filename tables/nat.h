// NAT entries. The main table has 256 slots, accessed by index or through a hash of the
// destination: a home slot below 0x80, then the 32 slots of one of four overflow groups. The
// server table has 16 slots, accessed by index. Unlike the other engines this one reports a
// result, and a write is refused when another entry holds the slot.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

inline constexpr unsigned kNatSlots = 256;
inline constexpr unsigned kNatServerSlots = 16;

/// One translation. Addresses are host integers, the first dotted part most significant.
struct NatEntry {
  std::uint8_t index;  ///< Slot: given to operations by index, found by operations by hash.
  std::uint32_t sip;   ///< Source.
  std::uint16_t sport;
  std::uint32_t dip;  ///< Destination.
  std::uint16_t dport;
  std::uint8_t protocol;  ///< 1 TCP, 0 UDP.
  std::uint16_t nsport;   ///< Translated source.
  std::uint32_t nsip;
  std::uint16_t age;    ///< Raw age-out value.
  std::uint8_t server;  ///< 0 or 1: inside server; only the server table stores it.
  std::uint8_t valid;   ///< 0 or 1; filled by reads.
};

/// The table that an operation by index works on. By hash it is always the main table.
enum class NatTable : bool { kMain = false, kServer = true };

/// How an operation finds its slot.
enum class NatAccess : bool { kByHash = false, kByIndex = true };

// All operations: kNotReady when the engine is busy before a step; kRefused for a server slot
// above 15 (nothing touched), when the engine reports no success, and when a search by hash ends
// without a slot.

/// By index: fills the entry from slot `index`. By hash: searches `dip` and `dport`, then fills
/// the entry, `index` included. The search sees the home slot and only one overflow slot, home
/// OR 0x80, 32 times; it does not find what NatWrite placed elsewhere.
[[nodiscard]] DriverStatus NatRead(NatTable table, NatAccess access, NatEntry& entry);

/// By index: writes slot `index`. By hash: writes the first slot that the engine accepts, the
/// home slot or one of its overflow group, and sets `index`. The entry becomes valid.
[[nodiscard]] DriverStatus NatWrite(NatTable table, NatAccess access, NatEntry& entry);

/// By index: invalidates slot `index`. By hash: searches `dip` and `dport` where NatWrite may
/// have placed them, valid or not, invalidates the slot and sets `index`. The rest stays.
[[nodiscard]] DriverStatus NatDelete(NatTable table, NatAccess access, NatEntry& entry);

/// The home slot of a destination, 0x00 to 0x7F: only the last octet of the address and the low
/// byte of the port enter it.
[[nodiscard]] unsigned NatHash(std::uint32_t dip, std::uint16_t dport);

void NatEntryPrint(const NatEntry& entry);

/// The `nat` command.
int NatCommand(int argc, ArgVector argv);

}  // namespace monitor
