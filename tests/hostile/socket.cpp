// The register, memory and console sockets of the monitor, on a path.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "console/console_port.h"
#include "core/bus.h"
#include "core/long_wait.h"
#include "hostile/event.h"

using hostile::Kind;
using hostile::OnEvent;

namespace {

std::vector<monitor::IrqState> g_saved;  ///< States that open lock brackets have saved.

// The chip has the most significant byte at the lowest address, whatever the host has.
template <typename Word>
Word ToMemory(std::uint32_t value) {
  std::uint8_t bytes[sizeof(Word)];
  for (unsigned i = 0; i < sizeof(Word); ++i) {
    bytes[i] = static_cast<std::uint8_t>(value >> 8 * (sizeof(Word) - 1 - i));
  }
  Word word;
  std::memcpy(&word, bytes, sizeof(Word));
  return word;
}

template <typename Word>
std::uint32_t FromMemory(Word word) {
  std::uint8_t bytes[sizeof(Word)];
  std::memcpy(bytes, &word, sizeof(Word));
  std::uint32_t value = 0;
  for (const std::uint8_t byte : bytes) value = value << 8 | byte;
  return value;
}

}  // namespace

namespace monitor {

std::uint8_t WindowLoad8(std::uint32_t offset) {
  return static_cast<std::uint8_t>(OnEvent(Kind::kLoad8, offset));
}
std::uint16_t WindowLoad16(std::uint32_t offset) {
  return ToMemory<std::uint16_t>(OnEvent(Kind::kLoad16, offset));
}
std::uint32_t WindowLoad32(std::uint32_t offset) {
  return ToMemory<std::uint32_t>(OnEvent(Kind::kLoad32, offset));
}
void WindowStore8(std::uint32_t offset, std::uint8_t value) {
  OnEvent(Kind::kStore8, offset, value);
}
void WindowStore16(std::uint32_t offset, std::uint16_t value) {
  OnEvent(Kind::kStore16, offset, FromMemory(value));
}
void WindowStore32(std::uint32_t offset, std::uint32_t value) {
  OnEvent(Kind::kStore32, offset, FromMemory(value));
}

bool MemoryMap(std::uint16_t base) { return OnEvent(Kind::kMap, base) != 0; }
std::uint8_t MemoryLoad8(std::uint32_t address) {
  return static_cast<std::uint8_t>(OnEvent(Kind::kMemoryLoad8, address));
}
std::uint16_t MemoryLoad16(std::uint32_t address) {
  return static_cast<std::uint16_t>(OnEvent(Kind::kMemoryLoad16, address));
}
void MemoryStore8(std::uint32_t address, std::uint8_t value) {
  OnEvent(Kind::kMemoryStore8, address, value);
}
void MemoryStore16(std::uint32_t address, std::uint16_t value) {
  OnEvent(Kind::kMemoryStore16, address, value);
}
void MemoryCopy(std::uint32_t to, std::uint32_t from, std::uint32_t count) {
  for (std::uint32_t i = 0; i < count; ++i) MemoryStore8(to + i, MemoryLoad8(from + i));
}

// The saved state is the event's value, so a state that is not the bracket's own is a difference.
void IrqLock(IrqState* saved) {
  *saved = 0xD1D1D100 + static_cast<IrqState>(g_saved.size());
  g_saved.push_back(*saved);
  OnEvent(Kind::kLock);
}

void IrqUnlock(IrqState saved) {
  const bool own = !g_saved.empty() && saved == g_saved.back();
  if (!g_saved.empty()) g_saved.pop_back();
  OnEvent(Kind::kUnlock, own ? 0 : saved);
}

int ConsoleReadChar() { return -1; }
bool ConsoleEnded() { return false; }
void ConsoleSend(const char* /*text*/, std::size_t /*count*/) {}
void ConsoleFlush() { OnEvent(Kind::kFlush); }
void ConsoleWait(long /*microseconds*/) { std::abort(); }  // No driver operation sleeps.
void ConsoleIdle(long /*microseconds*/) { std::abort(); }
bool WaitInterrupted(const Awaited& /*awaited*/) { return OnEvent(Kind::kLook) != 0; }

}  // namespace monitor
