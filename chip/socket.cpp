// The monitor's register and memory socket, filled with calls into the model.
#include "chip/router_chip.h"
#include "core/bus.h"

namespace chip {
namespace {

RouterChip* g_chip = nullptr;

}  // namespace

void Attach(RouterChip& chip) { g_chip = &chip; }

}  // namespace chip

namespace monitor {

using chip::g_chip;

std::uint8_t WindowLoad8(std::uint32_t offset) {
  return static_cast<std::uint8_t>(g_chip->registers.Load(offset, 1));
}
std::uint16_t WindowLoad16(std::uint32_t offset) {
  return SwapBigEndian(static_cast<std::uint16_t>(g_chip->registers.Load(offset, 2)));
}
std::uint32_t WindowLoad32(std::uint32_t offset) {
  return SwapBigEndian(g_chip->registers.Load(offset, 4));
}
void WindowStore8(std::uint32_t offset, std::uint8_t value) {
  g_chip->registers.Store(offset, 1, value);
}
void WindowStore16(std::uint32_t offset, std::uint16_t value) {
  g_chip->registers.Store(offset, 2, SwapBigEndian(value));
}
void WindowStore32(std::uint32_t offset, std::uint32_t value) {
  g_chip->registers.Store(offset, 4, SwapBigEndian(value));
}

bool MemoryMap(std::uint16_t base) {
  if (g_chip->on_map) g_chip->on_map(base);
  return g_chip->frames.memory.mappable;
}
std::uint8_t MemoryLoad8(std::uint32_t address) {
  return static_cast<std::uint8_t>(g_chip->frames.memory.Load(address, 1));
}
std::uint16_t MemoryLoad16(std::uint32_t address) { return g_chip->frames.memory.Load(address, 2); }
void MemoryStore8(std::uint32_t address, std::uint8_t value) {
  g_chip->frames.memory.Store(address, 1, value);
}
void MemoryStore16(std::uint32_t address, std::uint16_t value) {
  g_chip->frames.memory.Store(address, 2, value);
}

void MemoryCopy(std::uint32_t to, std::uint32_t from, std::uint32_t count) {
  g_chip->frames.memory.Copy(to, from, count);
}

void IrqLock(IrqState* saved) {
  *saved = 0;
  if (g_chip->on_lock) g_chip->on_lock(true);
}
void IrqUnlock(IrqState /*saved*/) {
  if (g_chip->on_lock) g_chip->on_lock(false);
}

}  // namespace monitor
