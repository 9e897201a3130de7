#pragma once

#include <string>

#include "host/signal_guard.h"

namespace board {

/// A pseudo-terminal in raw mode that programs find under a symbolic link. Its terminal side is
/// held open, so that clients may come and go. The link is removed with the object, and also when
/// a signal ends the program.
class PseudoTerminal {
 public:
  /// Throws std::system_error, naming the link, when it cannot be made.
  explicit PseudoTerminal(const std::string& link);
  ~PseudoTerminal();
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  /// The board's side.
  [[nodiscard]] int Fd() const { return board_side_; }

  /// The terminal side's own path, and the link to it.
  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] const std::string& Link() const { return link_; }

 private:
  PseudoTerminal();
  void RemoveLink() const;

  int board_side_;
  int terminal_side_ = -1;
  std::string path_;
  std::string link_;  ///< Empty until the link is made.
  SignalGuard guard_;
};

}  // namespace board
