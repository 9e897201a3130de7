// The words that name slots of a table: <index> and <index> [<number>].
#pragma once

#include "console/command.h"

namespace monitor {

/// Parses an index of at most two digits. False for one that is not below `slots`.
[[nodiscard]] bool ParseSlot(const char* word, unsigned slots, std::uint8_t& index);

/// Consecutive slots: from `begin` up to the one before `end`.
struct SlotRange {
  unsigned begin;
  unsigned end;
  bool single;  ///< The number is 1: the slot is shown also when it is invalid.
};

/// Parses one or two words as <index> [<number>]: a slot below `slots`, and a number of at most
/// two digits, 1 when it is missing. A range that runs past the last slot ends there. False for
/// any other count of words.
[[nodiscard]] bool ParseSlotRange(int words, ArgVector word, unsigned slots, SlotRange& range);

}  // namespace monitor
