#pragma once

#include <cstdint>

namespace monitor {

/// What the shell does next, or how a line ended.
enum class ShellEvent : std::uint8_t {
  kEdit,     ///< Prompts and takes characters.
  kServe,    ///< Gives the packet service its turn.
  kRun,      ///< Runs the line in the ConsoleLineBuffer.
  kDone,     ///< The line was carried out, or there was nothing in it to do.
  kRefused,  ///< The words match no form of a command.
  kFailed,   ///< A driver failed.
};

/// Called for each of the shell's events.
using ShellWatch = void (*)(ShellEvent event);

/// The monitor: prints the banner, then reads and runs command lines until `exit`, or until the
/// console has ended, maybe in the middle of a line; always 0. Between characters it lets the
/// packet service take received frames. Called once. The line `exit` has no result event.
int RunShell(ShellWatch watch = nullptr);

}  // namespace monitor
