// The state of a board as text: the chip's, and what the monitor on it has been set to. The format
// is described in docs/state.md.
#pragma once

#include <string>

#include "chip/router_chip.h"
#include "machine/state/state_error.h"

namespace board {

/// The state in JSON. Timers stand where they are now.
[[nodiscard]] std::string StateText(chip::RouterChip& chip);

/// Replaces the state by that of the text, whatever it was before. Throws StateError, and then
/// nothing has changed.
void ReplaceState(const std::string& text, chip::RouterChip& chip);

}  // namespace board
