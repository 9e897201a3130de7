#pragma once

#include "console/console.h"

namespace monitor {

/// Number of word slots in an ArgVector.
inline constexpr int kMaxWords = 128;

/// Pointers to the 128 word slots. Words are not cleared between lines: slots from the word
/// count onwards hold words of earlier lines.
using ArgVector = char* const*;

// Results of a CommandHandler.
inline constexpr int kDone = 1;     ///< The handler has done its work and printed the result.
inline constexpr int kUsage = 0;    ///< The words did not fit; the shell prints the usage rows.
inline constexpr int kFailed = -1;  ///< A driver failed; the handler has printed the message.

/// `argc` counts the command word (at least 1); words are in upper case, except word 0, which
/// the lookup has converted to lower case.
using CommandHandler = int (*)(int argc, ArgVector argv);

/// Prints a driver failure and gives the handler's result for it.
[[nodiscard]] inline int Fail(const char* message) {
  ConsolePuts(message);
  return kFailed;
}

}  // namespace monitor
