#pragma once

namespace board {

/// Turns the first SIGHUP, SIGINT or SIGTERM into something to look at, so that the board can end
/// in order between two steps of the monitor. A second one ends the program as it always does.
/// Signals that were ignored stay ignored. There is at most one object, made after all
/// SignalGuards.
class EndSignals {
 public:
  /// Throws std::system_error.
  EndSignals();
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;

  /// A descriptor that is readable once a signal has come.
  [[nodiscard]] int Fd() const;

  /// The signal that has come; 0 for none. It has its usual action again.
  [[nodiscard]] int Pending() const;
};

}  // namespace board
