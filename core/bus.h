// The register and memory socket: every access to the chip goes through these functions.
//
// They are declared here and filled at link time: by debug_monitor/ with single volatile loads and
// stores, by chip/ with calls into the software model, by the tests with a scripted bus.
#pragma once

#include <cstdint>

namespace monitor {

/// Size of the register window in bytes; valid offsets are 0x0000 to 0x1FFF.
inline constexpr std::uint32_t kWindowSize = 0x2000;

/// Address of the window as operators see it: offset X is shown as 0x50000000 + X.
inline constexpr std::uint32_t kWindowAddress = 0x50000000;

// One load or store of the stated width at a window offset. Values are as the processor sees
// them in memory; the accessors of registers.h turn them into register values.
std::uint8_t WindowLoad8(std::uint32_t offset);
std::uint16_t WindowLoad16(std::uint32_t offset);
std::uint32_t WindowLoad32(std::uint32_t offset);
void WindowStore8(std::uint32_t offset, std::uint8_t value);
void WindowStore16(std::uint32_t offset, std::uint16_t value);
void WindowStore32(std::uint32_t offset, std::uint32_t value);

/// Makes the frame buffer memory at bus address `base` * 65536 accessible; false when it cannot
/// be mapped. Costs nothing, and causes no bus traffic, when that base is already mapped.
[[nodiscard]] bool MemoryMap(std::uint16_t base);

// One load or store of frame buffer memory by 32-bit bus address, inside the area last given to
// MemoryMap. Halfwords are in the processor's own byte order.
std::uint8_t MemoryLoad8(std::uint32_t address);
std::uint16_t MemoryLoad16(std::uint32_t address);
void MemoryStore8(std::uint32_t address, std::uint8_t value);
void MemoryStore16(std::uint32_t address, std::uint16_t value);

/// `count` times one MemoryLoad8 at `from`, one MemoryStore8 at `to`, addresses increasing.
void MemoryCopy(std::uint32_t to, std::uint32_t from, std::uint32_t count);

/// Saved interrupt state of an IrqLock bracket.
using IrqState = std::uint32_t;

/// Opens the bracket around a register sequence that must not be interleaved with another user
/// of the same registers: masks interrupts and stores the previous state in `saved`.
void IrqLock(IrqState* saved);

/// Closes the bracket: restores the interrupt state that IrqLock saved.
void IrqUnlock(IrqState saved);

}  // namespace monitor
