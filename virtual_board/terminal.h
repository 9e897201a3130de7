#pragma once

#include <termios.h>

#include "host/signal_guard.h"

namespace board {

/// Keeps a terminal in the mode that the line editor needs, even when the program continues after a
/// stop, and restores it at the end, even when a signal ends the program: every key arrives at once
/// and unchanged, except Enter, which arrives as a line feed; nothing is echoed and output goes out
/// unchanged. Throws std::system_error when the terminal refuses.
class RawTerminal {
 public:
  explicit RawTerminal(int fd);
  ~RawTerminal();
  RawTerminal(const RawTerminal&) = delete;
  RawTerminal& operator=(const RawTerminal&) = delete;

 private:
  static termios ModeOf(int fd);
  static void GoOn(int signal);
  void Restore() const;

  static const RawTerminal* the_one_;  ///< For SIGCONT.

  int fd_;
  termios saved_;
  termios mode_;
  SignalGuard guard_;
};

}  // namespace board
