#pragma once

#include <cstdint>
#include <functional>

namespace chip {

/// The time in nanoseconds since any fixed moment; it never goes back.
using Clock = std::function<std::uint64_t()>;

}  // namespace chip
