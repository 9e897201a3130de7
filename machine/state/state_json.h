#pragma once

#include <nlohmann/json.hpp>

#include <string>

#include "machine/state/state_error.h"

namespace board {

/// The JSON object that a text is. Throws StateError for anything else, for a member that comes
/// twice, and, before it takes memory, for a text that no state looks like: too long, too deep, of
/// too many values, or with a NUL.
[[nodiscard]] nlohmann::json ParseStateJson(const std::string& text);

/// The longest text, in bytes. The fullest chip takes half of it.
inline constexpr std::size_t kLongestStateText = std::size_t{4} << 20;

}  // namespace board
