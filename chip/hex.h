#pragma once

#include <cstdint>
#include <string>

namespace chip {

/// The value in lower-case hexadecimal, with leading zeros up to `digits`, which is at least 1.
[[nodiscard]] std::string Hex(std::uint64_t value, unsigned digits = 1);

}  // namespace chip
