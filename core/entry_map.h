// Maps of one bit for each table entry, highest entry first: entry i is bit (i AND 7) of byte
// (top - i) / 8, so the bytes read as one big-endian number with entry i at bit i.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace monitor {

/// The map of a table of 64 entries.
using EntryMap = std::array<std::uint8_t, 8>;

/// Byte of the map that holds the entry's bit. `index` must lie in the map.
template <std::size_t N>
[[nodiscard]] constexpr unsigned EntryByte(const std::array<std::uint8_t, N>& /*map*/,
                                           unsigned index) {
  return static_cast<unsigned>((8 * N - 1 - index) / 8);
}

/// The entry's bit.
template <std::size_t N>
[[nodiscard]] constexpr bool EntryBit(const std::array<std::uint8_t, N>& map, unsigned index) {
  return (map[EntryByte(map, index)] >> (index & 7) & 1) != 0;
}

/// A map with only the entry's bit set.
template <std::size_t N>
[[nodiscard]] constexpr std::array<std::uint8_t, N> OnlyEntry(unsigned index) {
  std::array<std::uint8_t, N> map{};
  map[EntryByte(map, index)] = static_cast<std::uint8_t>(1U << (index & 7));
  return map;
}

/// A map with every bit set.
inline constexpr EntryMap kAllEntries{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

}  // namespace monitor
