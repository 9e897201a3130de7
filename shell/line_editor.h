// Collects one console line, a character at a time, with echo, backspace and history keys.
#pragma once

#include <cstdint>

namespace monitor {

inline constexpr int kLineBufferSize = 256;

/// The characters of the line being typed; a complete line ends in a carriage return. What is
/// typed beyond its end is echoed and counted but not stored.
extern char ConsoleLineBuffer[kLineBufferSize];

/// 1 when the buffer holds a complete line; cleared by the tokeniser.
extern std::uint8_t LineReady;

/// Takes at most one character (an escape sequence counts as one) from the console and acts on
/// it; false when none was waiting.
bool LineEditorPoll();

}  // namespace monitor
