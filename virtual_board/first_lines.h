#pragma once

#include <string>
#include <vector>

#include "virtual_board/options.h"

namespace board {

/// The lines that run before any that are typed: those of the --init files, then those of -c.
/// Throws std::runtime_error, naming file and line, for a file that cannot be read or has a line
/// that the console would not take as it is.
[[nodiscard]] std::vector<std::string> FirstLines(const Options& options);

}  // namespace board
