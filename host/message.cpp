#include "host/message.h"

#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

#include "host/end_signals.h"
#include "host/printable.h"

namespace board {
namespace {

void (*g_flush)() = [] {};

/// On a terminal in raw mode a line needs a carriage return, and the cursor may be after a
/// prompt.
bool OnRawTerminal() {
  termios mode{};
  return tcgetattr(STDERR_FILENO, &mode) == 0 && (mode.c_oflag & OPOST) == 0;
}

}  // namespace

void Report(const std::string& text) {
  g_flush();
  const bool raw = OnRawTerminal();
  const std::string line =
      (raw ? "\r\n" : "") + (kProgram + (": " + Printable(text))) + (raw ? "\r\n" : "\n");
  // A message that could not be written does not silence the next, unless its reader stalls.
  static bool abandoned = false;
  for (std::string_view left = line; !left.empty() && !abandoned;) {
    const ssize_t done = write(STDERR_FILENO, left.data(), left.size());
    if (done >= 0) {
      left.remove_prefix(static_cast<std::size_t>(done));
      continue;
    }
    const int error = RetryWrite(STDERR_FILENO);
    abandoned = error == EINTR;
    if (error != 0) return;
  }
}

void FlushBeforeMessages(void (*flush)()) { g_flush = flush; }

}  // namespace board
