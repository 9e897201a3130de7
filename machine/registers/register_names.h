#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "chip/register_file.h"
#include "core/register_map.h"

namespace board {

/// Explains bus accesses by the blocks' own register tables.
class RegisterNames {
 public:
  RegisterNames();

  /// The register's name, and its fields with their values in hexadecimal:
  /// "L3_FLAGS wan_mac=0 direct=1 valid=1 port=2". One of a run of registers is NAME[3], a part of
  /// a register NAME[15:8]. Empty for an access that no register contains.
  [[nodiscard]] std::string Explain(const chip::Access& access) const;

 private:
  [[nodiscard]] const monitor::RegisterRow* Find(std::uint32_t offset, unsigned width) const;

  /// The rows that have a register at an offset.
  std::array<std::vector<const monitor::RegisterRow*>, chip::RegisterFile::kSize> rows_at_;
};

}  // namespace board
