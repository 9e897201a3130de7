// The board: the register window at its fixed address and frame buffer memory in a second mapping,
// each access a single volatile load or store.
#include "debug_monitor/device.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "core/bus.h"

namespace monitor {
namespace {

constexpr std::size_t kBuffers = 256;
constexpr std::size_t kBufferSize = 2048;

/// Every buffer, and a page for the part of a frame that extends past the last one.
constexpr std::size_t kMemorySize = kBuffers * kBufferSize + 4096;

int g_device = -1;

unsigned char* g_memory = nullptr;
std::uint16_t g_memory_base = 0;

template <typename T>
volatile T& WindowAt(std::uint32_t offset) {
  return *reinterpret_cast<volatile T*>(static_cast<std::uintptr_t>(kWindowAddress) + offset);
}

/// The memory at a bus address; null outside the mapping, as when the hardware has moved the base
/// since the address was computed.
template <typename T>
volatile T* MemoryAt(std::uint32_t address) {
  const std::uint32_t from_base = address - (std::uint32_t{g_memory_base} << 16);
  if (from_base > kMemorySize - sizeof(T)) return nullptr;
  return reinterpret_cast<volatile T*>(g_memory + from_base);
}

/// All ones where there is no memory.
template <typename T>
T LoadFrom(std::uint32_t address) {
  const volatile T* const at = MemoryAt<T>(address);
  return at != nullptr ? *at : static_cast<T>(~0U);
}

template <typename T>
void StoreTo(std::uint32_t address, T value) {
  if (volatile T* const at = MemoryAt<T>(address)) *at = value;
}

}  // namespace

bool DeviceOpen() {
  g_device = open(DEBUG_MONITOR_DEVICE, O_RDWR | O_NONBLOCK | O_DSYNC);
  // Where the caller has closed a standard descriptor, the device must not become the console.
  if (g_device >= 0 && g_device <= STDERR_FILENO) {
    const int standard = g_device;
    g_device = fcntl(standard, F_DUPFD, STDERR_FILENO + 1);
    close(standard);
  }
  return g_device >= 0;
}

void* DeviceMapWindow() {
  void* const address = reinterpret_cast<void*>(static_cast<std::uintptr_t>(kWindowAddress));
  return mmap(address, kWindowSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, g_device,
              DEBUG_MONITOR_WINDOW);
}

std::uint8_t WindowLoad8(std::uint32_t offset) { return WindowAt<std::uint8_t>(offset); }
std::uint16_t WindowLoad16(std::uint32_t offset) { return WindowAt<std::uint16_t>(offset); }
std::uint32_t WindowLoad32(std::uint32_t offset) { return WindowAt<std::uint32_t>(offset); }

void WindowStore8(std::uint32_t offset, std::uint8_t value) {
  WindowAt<std::uint8_t>(offset) = value;
}
void WindowStore16(std::uint32_t offset, std::uint16_t value) {
  WindowAt<std::uint16_t>(offset) = value;
}
void WindowStore32(std::uint32_t offset, std::uint32_t value) {
  WindowAt<std::uint32_t>(offset) = value;
}

bool MemoryMap(std::uint16_t base) {
  if (g_memory != nullptr && g_memory_base == base) return true;
  if (g_memory != nullptr) munmap(g_memory, kMemorySize);
  void* const memory = mmap(nullptr, kMemorySize, PROT_READ | PROT_WRITE, MAP_SHARED, g_device,
                            static_cast<off_t>(base) << 16);
  g_memory = memory == MAP_FAILED ? nullptr : static_cast<unsigned char*>(memory);
  g_memory_base = base;
  return g_memory != nullptr;
}

std::uint8_t MemoryLoad8(std::uint32_t address) { return LoadFrom<std::uint8_t>(address); }
std::uint16_t MemoryLoad16(std::uint32_t address) { return LoadFrom<std::uint16_t>(address); }
void MemoryStore8(std::uint32_t address, std::uint8_t value) { StoreTo(address, value); }
void MemoryStore16(std::uint32_t address, std::uint16_t value) { StoreTo(address, value); }
void MemoryCopy(std::uint32_t to, std::uint32_t from, std::uint32_t count) {
  for (std::uint32_t i = 0; i < count; ++i) MemoryStore8(to + i, MemoryLoad8(from + i));
}

// This build cannot mask interrupts; the monitor is alone with the registers while it runs.
void IrqLock(IrqState* /*saved*/) {}
void IrqUnlock(IrqState /*saved*/) {}

}  // namespace monitor
