#pragma once

#include <cstdint>
#include <string>

namespace board {

/// The value in lower-case hexadecimal, with leading zeros up to `digits` (1 to 8).
[[nodiscard]] std::string Hex(std::uint32_t value, unsigned digits = 1);

}  // namespace board
