#pragma once

#include <string>
#include <string_view>

namespace board {

/// The text with its control bytes as escapes ("\n", "\x1b"), so that it changes neither the line
/// nor the terminal that shows it. Bytes from 0x80 on, as in UTF-8, stay.
[[nodiscard]] std::string Printable(std::string_view text);

}  // namespace board
