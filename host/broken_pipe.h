#pragma once

#include <csignal>

namespace board {

/// While it lives, writing to a pipe whose reader has gone is a write error like any other and does
/// not end the program.
class BrokenPipeIsError {
 public:
  BrokenPipeIsError() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignore, &old_);
  }
  ~BrokenPipeIsError() { sigaction(SIGPIPE, &old_, nullptr); }
  BrokenPipeIsError(const BrokenPipeIsError&) = delete;
  BrokenPipeIsError& operator=(const BrokenPipeIsError&) = delete;

 private:
  struct sigaction old_ {};
};

}  // namespace board
