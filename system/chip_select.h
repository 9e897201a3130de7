// The memory controller: what the chip selects decode, and the geometry of the SDRAM.
//
// Chip selects 0 and 1 have a start and a mask size, 3 to 5 also have wait states, and number 6,
// the alternative region, has only a start. There is no number 2.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

/// Number of the alternative region.
inline constexpr unsigned kCsAlternative = 6;

struct ChipSelect {
  std::uint16_t start;
  std::uint8_t maskSize;  ///< 0 to 15.
  std::uint8_t wait;      ///< 0 to 15.
};

/// Fills what the chip select has and leaves the rest. kRefused for a number that does not exist.
[[nodiscard]] DriverStatus CsRead(unsigned number, ChipSelect& cs);

/// Writes what the chip select has. kRefused, with nothing touched, for a number that does not
/// exist, and for a mask size or wait above 15 even where the chip select has none.
[[nodiscard]] DriverStatus CsWrite(unsigned number, const ChipSelect& cs);

/// The SDRAM's geometry as codes: what they stand for is 1, 8 and 11 more.
struct SdramType {
  std::uint8_t chipSelect;  ///< 0 or 1.
  std::uint8_t column;      ///< 0 or 1.
  std::uint8_t row;         ///< 0 to 2.
};

/// Always kOk. The codes read may be any that fit their fields: up to 1, 7 and 7.
DriverStatus SdramTypeRead(SdramType& type);

/// kRefused, with nothing touched, for a code out of range.
[[nodiscard]] DriverStatus SdramTypeWrite(const SdramType& type);

/// The `cs` command.
int CsCommand(int argc, ArgVector argv);

/// Shows the SDRAM type, or with `= <chip selects> <column bits> <row bits>` sets it. It has no row
/// in the command table.
int SdramTypeCommand(int argc, ArgVector argv);

}  // namespace monitor
