// What the arguments of options have to be. A check answers what is wrong, empty when nothing is.
#pragma once

#include <cstdint>
#include <string>

namespace board {

/// An option's argument is not the next option.
[[nodiscard]] std::string CheckArgument(const std::string& argument);

/// The name of a file or link.
[[nodiscard]] std::string CheckName(const std::string& argument);
/// Of a file that has to have one.
[[nodiscard]] std::string CheckFile(const std::string& argument);

/// A line that stands for keys that are typed, so none of them may be one that edits.
[[nodiscard]] std::string CheckLine(const std::string& line);

[[nodiscard]] std::string CheckCommand(const std::string& argument);
[[nodiscard]] std::string CheckPort(const std::string& argument);

/// A hexadecimal byte, with or without 0x. Throws UsageError, which names the option.
[[nodiscard]] std::uint8_t ParseHexByte(const std::string& option, const std::string& text);

}  // namespace board
