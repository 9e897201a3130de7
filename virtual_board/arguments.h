// Checks of the arguments of options. Each returns what is wrong, empty when nothing is.
#pragma once

#include <cstdint>
#include <string>

namespace board {

/// Any argument, which must not be the next option.
[[nodiscard]] std::string CheckArgument(const std::string& argument);

/// The name of a file or link.
[[nodiscard]] std::string CheckName(const std::string& argument);
/// The name of a file, not empty.
[[nodiscard]] std::string CheckFile(const std::string& argument);

/// A line stands for typed keys, so it must not contain editing keys.
[[nodiscard]] std::string CheckLine(const std::string& line);

[[nodiscard]] std::string CheckCommand(const std::string& argument);
[[nodiscard]] std::string CheckPort(const std::string& argument);

/// A hexadecimal byte, with or without 0x. Throws UsageError, which names the option.
[[nodiscard]] std::uint8_t ParseHexByte(const std::string& option, const std::string& text);

}  // namespace board
