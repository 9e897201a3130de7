#pragma once

#include <string>

namespace board {

/// The program's name in messages.
inline constexpr char kProgram[] = "virtual-board";

/// Prints a line about the board itself on standard error. Control bytes of the text are shown as
/// escapes.
void Report(const std::string& text);

/// Has `flush` called before each message, so that the message follows what has been printed so
/// far.
void FlushBeforeMessages(void (*flush)());

}  // namespace board
