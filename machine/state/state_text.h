// The state of a board as text: the chip's, and what the monitor on it has been set to. The format
// is described in docs/state.md.
#pragma once

#include <string>

#include "chip/router_chip.h"
#include "machine/state/state_error.h"

namespace board {

/// The state in JSON, with timers at their present counts.
[[nodiscard]] std::string StateText(chip::RouterChip& chip);

/// Replaces the state with that of the text, whatever it was before. Throws StateError, and then
/// nothing has changed.
void ReplaceState(const std::string& text, chip::RouterChip& chip);

}  // namespace board
