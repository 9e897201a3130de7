#include "console/console.h"

#include <cstring>

#include "console/console_port.h"
#include "core/bus.h"

namespace monitor {

char OutputBuffer[kOutputBufferSize];

namespace {

constexpr int kLastColumn = 79;
constexpr char kWrap[] = "\n\r\t   ";
constexpr int kColumnAfterWrap = 12;

constexpr unsigned kBytesPerLine = 16;

/// An empty dump line, and the position of its first byte.
constexpr char kEmptyLine[] = "00000000: .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r";
constexpr unsigned kFirstByte = 10;

/// Both digits of every byte value: a dump spends most of its time looking them up.
struct HexPairs {
  char digits[256][2];

  constexpr HexPairs() : digits() {
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (unsigned byte = 0; byte < 256; ++byte) {
      digits[byte][0] = kDigits[byte >> 4];
      digits[byte][1] = kDigits[byte & 0x0F];
    }
  }
};

constexpr HexPairs kHexPairs;

void PutHexByte(char* out, std::uint32_t byte) {
  std::memcpy(out, kHexPairs.digits[byte], sizeof(kHexPairs.digits[byte]));
}

/// Characters written by ConsolePuts since the last line end that it wrote.
int g_column = 0;

}  // namespace

void ConsolePuts(const char* text) {
  int column = g_column;
  const char* run = text;
  for (;; ++text) {
    const auto c = static_cast<unsigned char>(*text);
    if (c <= '\r') {  // One test for most characters.
      if (c == '\0') break;
      if (c == '\r' || c == '\n') column = 0;
    }
    if (column > kLastColumn) {
      ConsoleSend(run, static_cast<std::size_t>(text - run));
      ConsoleSend(kWrap, sizeof(kWrap) - 1);
      run = text;
      column = kColumnAfterWrap;
    }
    ++column;
  }
  ConsoleSend(run, static_cast<std::size_t>(text - run));
  g_column = column;
}

int ConsoleWrite(const char* text, int count) {
  ConsoleSend(text, static_cast<std::size_t>(count));
  return count;
}

void PrintArgs(const char* format, const FormatArg* args) {
  FormatText(OutputBuffer, sizeof(OutputBuffer), format, args);
  ConsolePuts(OutputBuffer);
}

void PrintMac(const MacAddress& mac) {
  for (const std::uint8_t byte : mac) Print("%02x", byte);
}

int HexDump(std::uint32_t address, std::uint32_t length, FetchBytes fetch) {
  unsigned skip = address % kBytesPerLine;
  address -= skip;
  if (length == 0 && skip == 0) return 1;
  do {
    const std::uint32_t room = kBytesPerLine - skip;
    const auto count = static_cast<unsigned>(length < room ? length : room);
    std::uint8_t bytes[kBytesPerLine];
    fetch(address + skip, bytes, count);

    char line[sizeof(kEmptyLine)];
    std::memcpy(line, kEmptyLine, sizeof(line));
    PutHexByte(line, address >> 24);
    PutHexByte(line + 2, address >> 16 & 0xFF);
    PutHexByte(line + 4, address >> 8 & 0xFF);
    PutHexByte(line + 6, address & 0xFF);
    char* at = line + kFirstByte + 3 * skip;
    for (unsigned i = 0; i < count; ++i, at += 3) PutHexByte(at, bytes[i]);
    ConsoleWrite(line, sizeof(line) - 1);

    address += kBytesPerLine;
    length -= count;
    skip = 0;
  } while (length != 0);
  return 1;
}

void FetchWindow(std::uint32_t address, std::uint8_t* bytes, unsigned count) {
  for (unsigned i = 0; i < count; ++i) bytes[i] = WindowLoad8(address - kWindowAddress + i);
}

void FetchMemory(std::uint32_t address, std::uint8_t* bytes, unsigned count) {
  for (unsigned i = 0; i < count; ++i) bytes[i] = MemoryLoad8(address + i);
}

}  // namespace monitor
