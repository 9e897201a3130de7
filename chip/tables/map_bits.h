// How maps of one bit for each entry change.
#pragma once

#include "core/entry_map.h"

namespace chip {

/// Sets the entry's bit.
template <std::size_t N>
void SetEntryBit(std::array<std::uint8_t, N>& map, unsigned index) {
  const auto only = monitor::OnlyEntry<N>(index);
  for (std::size_t i = 0; i < N; ++i) map[i] |= only[i];
}

/// Clears every bit that is 1 in `ones`.
template <std::size_t N>
void ClearEntryBits(std::array<std::uint8_t, N>& map, const std::array<std::uint8_t, N>& ones) {
  for (std::size_t i = 0; i < N; ++i) map[i] &= static_cast<std::uint8_t>(~ones[i]);
}

}  // namespace chip
