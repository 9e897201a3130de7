#pragma once

#include <nlohmann/json.hpp>

#include <string>

#include "machine/state/state_error.h"

namespace board {

/// Parses a JSON object. Throws StateError for anything else, for a duplicate member, and, before
/// it takes memory, for a text that cannot be a state: too long, nested too deep, of too many
/// values, or with a NUL.
[[nodiscard]] nlohmann::json ParseStateJson(const std::string& text);

/// The longest text, in bytes. The fullest chip takes half of it.
inline constexpr std::size_t kLongestStateText = std::size_t{4} << 20;

}  // namespace board
