#pragma once

#include <span>

#include "core/register_map.h"

namespace board {

/// The registers of one block of the chip.
struct RegisterBlock {
  const char* name;   ///< As in "l3".
  const char* title;  ///< As in "L3 routes".
  std::span<const monitor::RegisterRow> rows;
};

/// Every block, by the offset of its first register.
[[nodiscard]] std::span<const RegisterBlock> RegisterBlocks();

}  // namespace board
