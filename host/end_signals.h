// An orderly end of the board by SIGHUP, SIGINT or SIGTERM, even while its output stalls.
#pragma once

#include <csignal>

namespace board {

/// Turns the first of these signals into a flag to be polled, so that the board can end between two
/// steps of the monitor. Every system call that blocks after it is interrupted (EINTR) within a
/// short time, and again if it is repeated: even one that begins after the signal. A second signal
/// has its usual action. Signals that were ignored stay ignored. To be called once, after all
/// SignalGuards are made. Throws std::system_error.
void CatchEndSignals();

/// The signal that has come; 0 for none. It has its usual action again.
[[nodiscard]] int EndSignal();

/// True from half a second after the signal on: stalled readers are no longer waited for.
[[nodiscard]] bool EndIsOverdue();

/// To be called after a write() that failed. 0 when it is to be retried, perhaps after a wait for
/// room; else the error number, EINTR for a reader that holds up the end of the board.
[[nodiscard]] int RetryWrite(int fd);

/// While it lives, a requested end interrupts nothing.
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
