// The PDR table: 64 addresses, each reached over a PPPoE session or over plain IP.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

inline constexpr unsigned kPdrEntries = 64;

struct PdrEntry {
  std::uint32_t ip;            ///< Host integer, the first dotted part most significant.
  std::uint8_t pppoe;          ///< Non-zero PPPoE, 0 IPoE.
  std::uint8_t sessionNumber;  ///< Entry of the PPPoE session table; a write keeps two bits.
  std::uint8_t valid;          ///< Filled by reads; a write always marks the entry valid.
};

// kRefused, with nothing touched, for an index above 63.

/// Does not check whether the engine is busy; kNotReady only when the operator ends the wait.
[[nodiscard]] DriverStatus PdrRead(unsigned index, PdrEntry& entry);

/// kNotReady when the engine is busy.
[[nodiscard]] DriverStatus PdrWrite(unsigned index, const PdrEntry& entry);

/// Marks the entry invalid; the rest of it stays. kNotReady when the engine is busy.
[[nodiscard]] DriverStatus PdrDelete(unsigned index);

/// Prints the entry as entry `index`.
void PdrPrint(const PdrEntry& entry, unsigned index);

/// The `pdr` command.
int PdrCommand(int argc, ArgVector argv);

}  // namespace monitor
