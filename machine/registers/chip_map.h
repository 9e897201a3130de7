#pragma once

#include <cstdint>
#include <memory>

#include "chip/router_chip.h"
#include "core/register_map.h"

namespace board {

/// What software may do with bits.
enum class BitUse : std::uint8_t {
  kReadWrite,
  kReadOnly,   ///< Stores leave them alone.
  kOneClears,  ///< A store of 1 clears them, of 0 leaves them alone.
};

/// What the rows of the register tables leave to the model: how registers behave.
class ChipMap {
 public:
  ChipMap();

  /// The power-on value of a row's first register; those of a run are alike.
  [[nodiscard]] std::uint32_t Reset(const monitor::RegisterRow& row) const;

  /// How all bits of `mask` behave; kReadWrite when they differ.
  [[nodiscard]] BitUse Use(const monitor::RegisterRow& row, std::uint32_t mask) const;

 private:
  std::unique_ptr<chip::RouterChip> chip_;
};

// Of a row of the PHYs' registers: its value at power-on while nothing is attached, and how its
// bits behave.
[[nodiscard]] std::uint16_t PhyReset(const monitor::RegisterRow& row);
[[nodiscard]] BitUse PhyUse(const monitor::RegisterRow& row);

/// The mask of every bit of a row's registers.
[[nodiscard]] std::uint32_t AllBits(const monitor::RegisterRow& row);

}  // namespace board
