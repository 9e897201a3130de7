// The PXT table: four entries, each pairing an internal PPPoE side with an external one, accessed
// through a window of one entry and a command byte. The index shares a register with port and valid
// bit.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"
#include "pppoe/record_id.h"

namespace monitor {

inline constexpr unsigned kPxtEntries = 4;

/// The internal port's code for DMZ; every other stands for LAN.
inline constexpr std::uint8_t kPxtPortDmz = 2;

/// One pair. Switches are 0 or 1 after a read; any other value counts as 1 in a write. IDs are
/// high byte first for a write, low byte first after a read.
struct PxtEntry {
  MacAddress internalMac;
  MacAddress externalMac;
  RecordId internalSessionId;
  RecordId externalSessionId;
  RecordId internalVlanId;
  RecordId externalVlanId;
  std::uint8_t internalForce;
  std::uint8_t internalTag;
  std::uint8_t internalUsed;
  std::uint8_t externalForce;
  std::uint8_t externalTag;
  std::uint8_t externalUsed;
  std::uint8_t port;   ///< kPxtPortDmz or another code; a write keeps two bits.
  std::uint8_t valid;  ///< Filled by reads; a write always marks the entry valid.
};

// kNotReady when the engine is busy, kRefused, with nothing touched, for an index above 3.

[[nodiscard]] DriverStatus PxtRead(unsigned index, PxtEntry& entry);
[[nodiscard]] DriverStatus PxtWrite(unsigned index, const PxtEntry& entry);

/// Marks the entry invalid; the rest of it stays.
[[nodiscard]] DriverStatus PxtDelete(unsigned index);

/// Sets or clears the used switches by reading the entry and writing it again, which marks it
/// valid; the IDs stay as they are. Every failure is kRefused.
[[nodiscard]] DriverStatus PxtSetUsed(unsigned index, std::uint8_t internal_used,
                                      std::uint8_t external_used);

/// Prints an entry that was read as entry `index`.
void PxtPrint(const PxtEntry& entry, unsigned index);

/// The `pxt` command.
int PxtCommand(int argc, ArgVector argv);

}  // namespace monitor
