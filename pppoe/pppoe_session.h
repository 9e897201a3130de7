// The PPPoE session table (pst): four entries, each binding an address to a session, accessed
// through a window of one entry and a command byte. The index shares a register with the entry's
// switches.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"
#include "pppoe/record_id.h"

namespace monitor {

inline constexpr unsigned kPstEntries = 4;

/// One session. Switches are 0 or 1 after a read; any other value counts as 1 in a write.
struct PstEntry {
  std::uint32_t ip;    ///< Host integer, the first dotted part most significant.
  RecordId sessionId;  ///< High byte first for a write, low byte first after a read.
  RecordId vlanId;     ///< Likewise.
  MacAddress serverMac;
  std::uint8_t tag;
  std::uint8_t force;
  std::uint8_t used;
  std::uint8_t valid;  ///< Filled by reads; a write always marks the entry valid.
};

// kNotReady when the engine is busy, kRefused, with nothing touched, for an index above 3.

[[nodiscard]] DriverStatus PstRead(unsigned index, PstEntry& entry);
[[nodiscard]] DriverStatus PstWrite(unsigned index, const PstEntry& entry);

/// Marks the entry invalid; the rest of it stays.
[[nodiscard]] DriverStatus PstDelete(unsigned index);

/// Clears the used switch by reading the entry and writing it again, which marks it valid and
/// exchanges the two bytes of both IDs. Every failure is kRefused.
[[nodiscard]] DriverStatus PstClear(unsigned index);

/// Prints an entry that was read as entry `index`.
void PstPrint(const PstEntry& entry, unsigned index);

/// The `pst` command.
int PstCommand(int argc, ArgVector argv);

}  // namespace monitor
