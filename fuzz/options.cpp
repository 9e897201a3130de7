// Any words as the command line of the board, one per line. They are understood or refused as a
// wrong command line; the faults that they name are set.
#include "virtual_board/options.h"

#include <cstddef>
#include <sstream>

#include "machine/faults.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream lines(std::string(data, data + size));
  std::vector<std::string> words{"virtual-board"};
  // A word of a command line ends with its first NUL.
  for (std::string line; std::getline(lines, line);) words.emplace_back(line.c_str());
  std::vector<const char*> pointers;
  for (const std::string& word : words) pointers.push_back(word.c_str());
  pointers.push_back(nullptr);
  static chip::RouterChip chip;
  try {
    const auto options = board::ParseOptions(static_cast<int>(words.size()), pointers.data());
    for (const std::string& fault : options.machine.faults) board::SetFault(chip, fault);
  } catch (const board::UsageError&) {
    return 0;
  }
  return 0;
}
