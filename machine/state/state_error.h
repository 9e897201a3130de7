#pragma once

#include <stdexcept>

namespace board {

/// A state that cannot be loaded: the place in its text and what is wrong there.
struct StateError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace board
