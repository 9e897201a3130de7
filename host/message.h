#pragma once

#include <string>

namespace board {

/// Prints a line about the board itself on standard error, after what the console has printed so
/// far.
void Report(const std::string& text);

}  // namespace board
