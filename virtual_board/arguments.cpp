#include "virtual_board/arguments.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "machine/ports/port.h"
#include "shell/line_editor.h"
#include "virtual_board/options.h"

namespace board {
namespace {

/// Characters of a line that the monitor looks at; it cuts off the rest.
constexpr std::size_t kLongestLine = monitor::kLineBufferSize - 2;

}  // namespace

std::string CheckArgument(const std::string& argument) {
  if (argument == "-" || !argument.starts_with('-')) return "";
  return "its argument is missing before '" + argument + "'";
}

std::string CheckName(const std::string& argument) {
  if (argument != "-") return CheckArgument(argument);
  return "'-' is not a file: standard input and output carry the console; name a file, './-' for "
         "one called '-'";
}

std::string CheckFile(const std::string& argument) {
  return argument.empty() ? "a file needs a name" : CheckName(argument);
}

std::string CheckLine(const std::string& line) {
  const auto is_control = [](unsigned char c) { return c < ' ' || c == '\x7f'; };
  if (std::any_of(line.begin(), line.end(), is_control)) {
    return "a command is one line without control characters";
  }
  if (line.size() <= kLongestLine) return "";
  return "a command has " + std::to_string(line.size()) + " characters; the console takes " +
         std::to_string(kLongestLine);
}

std::string CheckCommand(const std::string& argument) {
  std::string missing = CheckArgument(argument);
  if (!missing.empty()) return missing;
  if (argument.find('\n') == std::string::npos) return CheckLine(argument);
  return CheckLine(argument) + "; give each its own -c";
}

std::string CheckPort(const std::string& argument) {
  std::string missing = CheckArgument(argument);
  if (!missing.empty()) return missing;
  if (!IsPort(argument)) {
    return "'" + argument + "' is not a port: use tap:NAME, pcap:[IN][,OUT], unix:PATH or none";
  }
  const auto [in, out] = CapturesOf(argument);
  return in == "-" || out == "-" ? CheckName("-") : "";
}

std::uint8_t ParseHexByte(const std::string& option, const std::string& text) {
  std::string_view digits = text;
  if (digits.starts_with("0x") || digits.starts_with("0X")) digits.remove_prefix(2);
  std::uint8_t byte = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
  if (result.ec != std::errc() || result.ptr != digits.data() + digits.size()) {
    throw UsageError(option + ": '" + text +
                     "' is not a hexadecimal number from 0 to ff, such as a5 or 0xa5");
  }
  return byte;
}

}  // namespace board
