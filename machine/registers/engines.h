#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/engine_fields.h"

namespace board {

/// An engine that works on what is not in the register window: software names an entry in the
/// index, starts a step through the command register, and reaches the entry in the data registers.
struct EngineRow {
  const char* name;       ///< As faults know it.
  std::uint16_t command;  ///< Offset of the register of `fields`.
  monitor::EngineFields fields;
  std::uint16_t index;                       ///< Offset of the register that holds
  std::vector<monitor::Field> index_fields;  ///< these; all of it when there are none.
  std::vector<std::string> data;             ///< Names of the data registers.
};

[[nodiscard]] std::vector<EngineRow> Engines();

}  // namespace board
