#include "host/message.h"

#include <termios.h>
#include <unistd.h>

#include <iostream>

#include "console/console_port.h"
#include "host/printable.h"

namespace board {
namespace {

/// On a terminal that takes output as it is, a line needs its carriage return, and the cursor
/// may stand behind a prompt.
bool OnRawTerminal() {
  termios mode{};
  return tcgetattr(STDERR_FILENO, &mode) == 0 && (mode.c_oflag & OPOST) == 0;
}

}  // namespace

void Report(const std::string& text) {
  monitor::ConsoleFlush();
  const char* const end = OnRawTerminal() ? "\r\n" : "\n";
  const char* const begin = OnRawTerminal() ? "\r\n" : "";
  // A message that could not be written does not silence the next.
  std::cerr.clear();
  std::cerr << begin << std::string(kProgram) + ": " + Printable(text) + end;
}

}  // namespace board
