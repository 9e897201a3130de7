// The console socket: where characters come from and go to. Filled at link time, by
// console/posix_console.cpp in both programs and by a scripted console in the tests.
#pragma once

#include <cstddef>

namespace monitor {

/// The next input character (0 to 255), or -1 when none is waiting. Does not wait for one, but for
/// half a second after a Ctrl-C that WaitInterrupted has found.
[[nodiscard]] int ConsoleReadChar();

/// Queues `count` characters for output. Nothing is lost: a full queue is flushed first.
void ConsoleSend(const char* text, std::size_t count);

/// Hands everything queued to the output.
void ConsoleFlush();

/// Flushes, then sleeps until input is waiting or `microseconds` have passed; a negative time
/// has no deadline. May return early.
void ConsoleWait(long microseconds);

/// As ConsoleWait, when there is nothing left to do: a program that is woken by every event sleeps
/// until one occurs.
void ConsoleIdle(long microseconds);

}  // namespace monitor
