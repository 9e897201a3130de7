#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/registers.h"

namespace board {

/// An engine that works on what is not in the register window: software names an entry in the
/// index, starts a step through the command register, and reaches the entry in the data registers.
struct EngineRow {
  const char* name;       ///< Its name in faults.
  std::uint16_t command;  ///< Offset of the register of the fields from `start` to `result`.
  monitor::Field start;
  monitor::Field read_done;   ///< Set when a read step is over,
  monitor::Field write_done;  ///< and a write step.
  monitor::Field write;       ///< Direction: 1 write. No name where there is only one.
  monitor::Field result;      ///< Set when the last step has succeeded. No name if there is none.
  std::uint16_t index;        ///< Offset of the register that holds
  std::vector<monitor::Field> index_fields;  ///< these; all of it when there are none.
  std::vector<std::string> data;             ///< Names of the data registers.
};

[[nodiscard]] std::vector<EngineRow> Engines();

}  // namespace board
