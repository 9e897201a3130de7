// States of version 1, which noted entries as their registers held them.
#pragma once

#include <nlohmann/json.hpp>

namespace board {

/// Makes a state of version 1 one of version 2. Throws StateError for what cannot be converted;
/// what is wrong in the rest is left to the reader.
void ConvertVersion1(nlohmann::json& state);

}  // namespace board
