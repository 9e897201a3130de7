#include "virtual_board/first_lines.h"

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "virtual_board/arguments.h"

namespace board {
namespace {

[[noreturn]] void FailToRead(const std::string& path) {
  throw std::system_error(errno, std::generic_category(),
                          "cannot read the lines of '" + path + "'");
}

/// The last line need not end with a line feed.
void AppendLines(const std::string& path, std::vector<std::string>& lines) {
  std::ifstream file(path, std::ios::binary);
  if (!file) FailToRead(path);
  std::string line;
  int number = 1;
  // Input that is not text, or endless, is refused before it fills the memory.
  for (char c; file.get(c);) {
    if (c == '\n') {
      lines.push_back(std::exchange(line, ""));
      ++number;
      continue;
    }
    line += c;
    const std::string wrong = CheckLine(line);
    if (!wrong.empty()) {
      std::string message = "--init '";
      message.append(path).append("', line ").append(std::to_string(number)).append(": ");
      throw std::runtime_error(message.append(wrong));
    }
  }
  if (file.bad()) FailToRead(path);
  if (!line.empty()) lines.push_back(line);
}

}  // namespace

std::vector<std::string> FirstLines(const Options& options) {
  std::vector<std::string> lines;
  for (const std::string& path : options.init_files) AppendLines(path, lines);
  lines.insert(lines.end(), options.commands.begin(), options.commands.end());
  return lines;
}

}  // namespace board
