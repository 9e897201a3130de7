// What every command prints through.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "console/format.h"
#include "console/parse.h"

namespace monitor {

inline constexpr std::size_t kOutputBufferSize = 320;

/// The one buffer that formatted pieces pass through on their way to ConsolePuts; longer pieces
/// are cut. Nothing is kept in it between calls.
extern char OutputBuffer[kOutputBufferSize];

/// Writes the text and wraps it: once 79 characters are on the line, a line feed, a carriage
/// return, a tab and three spaces come first. A line end counts as the first character of the
/// line that it begins, so the column is 1 after "\n\r".
void ConsolePuts(const char* text);

/// Writes exactly `count` characters, without counting columns or wrapping. Returns `count`.
int ConsoleWrite(const char* text, int count);

/// Formats into the OutputBuffer and writes it with ConsolePuts.
void PrintArgs(const char* format, const FormatArg* args);

template <typename... Args>
void Print(std::type_identity_t<Format<Args...>> format, const Args&... args) {
  const FormatArg list[] = {FormatArg(args)..., FormatArg(0)};
  PrintArgs(format.Text(), list);
}

/// Prints six bytes as "%02x" each.
void PrintMac(const MacAddress& mac);

/// Fetches `count` bytes (at most 16) starting at `address`, one byte load each, in order.
using FetchBytes = void (*)(std::uint32_t address, std::uint8_t* bytes, unsigned count);

/// Dumps `length` bytes from `address` in lines of sixteen aligned bytes, positions outside the
/// range shown as "..", each line written as soon as its bytes are fetched. Always returns 1.
int HexDump(std::uint32_t address, std::uint32_t length, FetchBytes fetch);

/// FetchBytes of the register window, at its operator address, and of frame buffer memory.
void FetchWindow(std::uint32_t address, std::uint8_t* bytes, unsigned count);
void FetchMemory(std::uint32_t address, std::uint8_t* bytes, unsigned count);

}  // namespace monitor
