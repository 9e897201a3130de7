// The formats of the register map.
#pragma once

#include <string>

#include "machine/registers/chip_map.h"

namespace board {

inline constexpr char kChipName[] = "VBQ5910";

[[nodiscard]] std::string WriteText(const ChipMap& chip);
[[nodiscard]] std::string WriteSvd(const ChipMap& chip);
[[nodiscard]] std::string WriteJson(const ChipMap& chip);

}  // namespace board
