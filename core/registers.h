// Typed registers: a register is a constant whose type carries its width, its fields are
// constants next to it, and each accessor below makes exactly the bus accesses that its line says.
//
// The chip's registers are big-endian: the byte at the lowest offset is the most significant.
// Register values here are host integers; this file is the only place where bytes are swapped.
#pragma once

#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "core/bus.h"

namespace monitor {

/// Bits `high` down to `low` (inclusive, as a data sheet prints them) of a register.
struct Field {
  unsigned high;
  unsigned low;
  const char* name = "";
  const char* meaning = "";

  /// The field's bits in register position.
  template <std::unsigned_integral T = std::uint8_t>
  [[nodiscard]] constexpr T Mask() const {
    return static_cast<T>((std::uint64_t{1} << (high + 1)) - (std::uint64_t{1} << low));
  }

  /// The field's value in a register value, right-aligned.
  template <std::unsigned_integral T>
  [[nodiscard]] constexpr T Get(T value) const {
    return static_cast<T>((value & Mask<T>()) >> low);
  }

  /// `value` in register position, cut to the field.
  template <std::unsigned_integral T = std::uint8_t>
  [[nodiscard]] constexpr T Put(std::uint32_t value) const {
    return static_cast<T>((std::uint64_t{value} << low) & Mask<T>());
  }
};

/// A register of the width of T at a window offset.
template <std::unsigned_integral T>
struct Reg {
  std::uint16_t offset;
  const char* name = "";
  const char* meaning = "";
};

using Reg8 = Reg<std::uint8_t>;
using Reg16 = Reg<std::uint16_t>;
using Reg32 = Reg<std::uint32_t>;

/// N consecutive byte registers, accessed one byte at a time.
template <std::size_t N>
struct RegBytes {
  std::uint16_t offset;
  const char* name = "";
  const char* meaning = "";

  [[nodiscard]] constexpr Reg8 operator[](unsigned i) const {
    return {static_cast<std::uint16_t>(offset + i), name, meaning};
  }
};

/// A 16-bit word between big-endian and host order, either way.
[[nodiscard]] constexpr std::uint16_t SwapBigEndian(std::uint16_t value) {
  if constexpr (std::endian::native == std::endian::big) return value;
  return __builtin_bswap16(value);
}

/// A 32-bit word between big-endian and host order, either way.
[[nodiscard]] constexpr std::uint32_t SwapBigEndian(std::uint32_t value) {
  if constexpr (std::endian::native == std::endian::big) return value;
  return __builtin_bswap32(value);
}

// Read: one load.
[[nodiscard]] inline std::uint8_t Read(Reg8 reg) { return WindowLoad8(reg.offset); }
[[nodiscard]] inline std::uint16_t Read(Reg16 reg) {
  return SwapBigEndian(WindowLoad16(reg.offset));
}
[[nodiscard]] inline std::uint32_t Read(Reg32 reg) {
  return SwapBigEndian(WindowLoad32(reg.offset));
}

// Write: one store.
inline void Write(Reg8 reg, std::uint8_t value) { WindowStore8(reg.offset, value); }
inline void Write(Reg16 reg, std::uint16_t value) {
  WindowStore16(reg.offset, SwapBigEndian(value));
}
inline void Write(Reg32 reg, std::uint32_t value) {
  WindowStore32(reg.offset, SwapBigEndian(value));
}

/// Register becomes (old OR set) AND keep: one load, one store.
inline void Modify(Reg8 reg, std::uint8_t set, std::uint8_t keep) {
  Write(reg, static_cast<std::uint8_t>((Read(reg) | set) & keep));
}

/// Sets every bit of the field: one load, one store.
inline void SetBits(Reg8 reg, Field field) { Modify(reg, field.Mask(), 0xFF); }

/// Clears every bit of the field: one load, one store.
inline void ClearBits(Reg8 reg, Field field) {
  Modify(reg, 0, static_cast<std::uint8_t>(~field.Mask()));
}

/// Sets or clears every bit of the field: one load, one store.
inline void AssignBits(Reg8 reg, Field field, bool on) {
  on ? SetBits(reg, field) : ClearBits(reg, field);
}

/// Two 16-bit loads: bits 15..8 come from the first, bits 7..0 from the second.
[[nodiscard]] inline std::uint16_t ReadHalves(Reg16 reg) {
  const std::uint16_t high = Read(reg);
  const std::uint16_t low = Read(reg);
  return static_cast<std::uint16_t>((high & 0xFF00) | (low & 0x00FF));
}

/// N byte loads in increasing order.
template <std::size_t N>
void ReadBytes(RegBytes<N> regs, std::array<std::uint8_t, N>& bytes) {
  for (unsigned i = 0; i < N; ++i) bytes[i] = Read(regs[i]);
}

/// N byte stores in increasing order.
template <std::size_t N>
void WriteBytes(RegBytes<N> regs, const std::array<std::uint8_t, N>& bytes) {
  for (unsigned i = 0; i < N; ++i) Write(regs[i], bytes[i]);
}

}  // namespace monitor
