#include "chip/hex.h"

#include <algorithm>
#include <bit>

namespace chip {

std::string Hex(std::uint64_t value, unsigned digits) {
  const auto needed = static_cast<unsigned>(std::bit_width(value) + 3) / 4;
  std::string text(std::max(digits, needed), '0');
  for (auto digit = text.rbegin(); digit != text.rend(); ++digit, value >>= 4) {
    *digit = "0123456789abcdef"[value & 0xF];
  }
  return text;
}

}  // namespace chip
