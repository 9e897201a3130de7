#include "host/message.h"

#include <termios.h>
#include <unistd.h>

#include <iostream>

#include "console/console_port.h"

namespace board {
namespace {

/// On a terminal in raw mode a line needs a carriage return, and the cursor may be after a
/// prompt.
bool OnRawTerminal() {
  termios mode{};
  return tcgetattr(STDERR_FILENO, &mode) == 0 && (mode.c_oflag & OPOST) == 0;
}

}  // namespace

void Report(const std::string& text) {
  monitor::ConsoleFlush();
  const char* const end = OnRawTerminal() ? "\r\n" : "\n";
  const char* const begin = OnRawTerminal() ? "\r\n" : "";
  // A message that could not be written does not suppress the next.
  std::cerr.clear();
  std::cerr << begin << "virtual-board: " + text + end;
}

}  // namespace board
