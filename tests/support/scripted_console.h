// A console whose input the test types and whose output the test reads.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/long_wait.h"

/// Characters that the monitor will find waiting.
void Type(const std::string& keys);

/// As many reads will find no character before they find what is typed next.
void TypeNothing(unsigned reads);

/// Characters that are typed and not read.
[[nodiscard]] std::size_t UnreadKeys();

/// Forgets what is typed and not read, all that was printed, and all that was counted; lifts the
/// Ctrl-C. The next line printed begins after a line end.
void ClearConsole();

/// Everything printed since the last call.
[[nodiscard]] std::string TakeOutput();

/// Characters printed that the monitor has not handed to the output yet.
[[nodiscard]] std::size_t UnflushedOutput();

/// The microseconds of each sleep since the last call. A monitor that sleeps forever, because the
/// test types nothing more, ends the program.
[[nodiscard]] std::vector<long> TakeSleeps();

/// From now on a wait on hardware finds a Ctrl-C when it looks at the console (true), or none.
void PressCtrlCInWaits(bool pressed);

/// How often the monitor has looked for a Ctrl-C since the last call.
[[nodiscard]] unsigned TakeLooks();

/// What the monitor was waiting for when it last looked.
[[nodiscard]] const monitor::Awaited& LastAwaited();

/// How often the monitor has flushed the console since the last call.
[[nodiscard]] unsigned TakeFlushes();
