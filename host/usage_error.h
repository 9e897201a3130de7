#pragma once

#include <stdexcept>

namespace board {

/// A command line that makes no sense; what() names the part and what would be right.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace board
