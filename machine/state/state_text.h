// The state of a board as text: the chip's, and what the monitor on it has been set to. The format
// is described in docs/state.md.
#pragma once

#include <string>

#include "chip/router_chip.h"
#include "machine/state/state_error.h"

namespace board {

/// The state in JSON, with the user's note if there is one. Timers have their present counts.
[[nodiscard]] std::string StateText(chip::RouterChip& chip, std::string note = "");

/// Replaces the state, whatever it was before, by that of the text and returns its note. Throws
/// StateError, and then nothing has changed.
std::string ReplaceState(const std::string& text, chip::RouterChip& chip);

}  // namespace board
