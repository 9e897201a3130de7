#pragma once

#include <csignal>

namespace board {

/// While it lives, a reader of a file that went away is an error of writing like any other, and
/// not the end of the program.
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
