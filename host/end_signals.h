// The end of the board by SIGHUP, SIGINT or SIGTERM, in order and whoever stands in its way.
#pragma once

#include <csignal>

namespace board {

/// Turns the first of these signals into something to look at, so that the board can end between
/// two steps of the monitor. Every system call that blocks after it is interrupted (EINTR) within a
/// short time, and again if it is repeated: none can begin too late to notice. A second signal ends
/// the program as it always does. Signals that were ignored stay ignored. To be called once, after
/// all SignalGuards are made. Throws std::system_error.
void CatchEndSignals();

/// The signal that has come; 0 for none. It has its usual action again.
[[nodiscard]] int EndSignal();

/// True half a second after the signal: who does not read by then is not waited for any more.
[[nodiscard]] bool EndIsOverdue();

/// To be called after a write() that failed. 0 when it is to be tried again, which may take a wait
/// for room; else the error number, EINTR for a reader that holds up the end of the board.
[[nodiscard]] int RetryWrite(int fd);

/// While it lives, an end that has been asked for interrupts nothing.
class Uninterrupted {
 public:
  Uninterrupted();
  ~Uninterrupted() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
  Uninterrupted(const Uninterrupted&) = delete;
  Uninterrupted& operator=(const Uninterrupted&) = delete;

 private:
  sigset_t before_{};
};

}  // namespace board
