#include "board/hex.h"

#include <array>
#include <cstdio>

namespace board {

std::string Hex(std::uint32_t value, unsigned digits) {
  std::array<char, 9> text;
  std::snprintf(text.data(), text.size(), "%0*x", static_cast<int>(digits), value);
  return text.data();
}

}  // namespace board
