#pragma once

#include <string>

namespace board {

/// The program's name in messages.
inline constexpr char kProgram[] = "virtual-board";

/// Prints a line about the board itself on standard error, after what the console has printed so
/// far. Control bytes of the text are shown as escapes.
void Report(const std::string& text);

}  // namespace board
