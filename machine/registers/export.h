#pragma once

#include <string>
#include <vector>

namespace board {

/// The formats of the register map: "text", "svd" and "json".
[[nodiscard]] std::vector<std::string> RegisterMapFormats();

/// Every register of the chip in one of the formats: a list to read, a CMSIS-SVD device, or JSON,
/// which also holds what the others cannot say. Ends with a line feed.
[[nodiscard]] std::string RegisterMap(const std::string& format);

}  // namespace board
