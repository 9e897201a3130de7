#include "virtual_board/long_wait.h"

#include <bit>

#include "chip/hex.h"
#include "machine/registers/register_blocks.h"

namespace board {
namespace {

std::string BitName(const monitor::RegisterRow& row, std::uint8_t mask) {
  for (unsigned i = 0; i < row.field_count; ++i) {
    if (row.fields[i].Mask() == mask) return std::string(" (").append(row.fields[i].name) + ")";
  }
  return "";
}

}  // namespace

std::string DescribeWait(const monitor::Awaited& awaited) {
  if (awaited.mask == 0) {
    return "keeps reading a word that will never be a number; no register is involved";
  }
  std::string text = "waits for bit " + std::to_string(std::countr_zero(awaited.mask));
  for (const RegisterBlock& block : RegisterBlocks()) {
    for (const monitor::RegisterRow& row : block.rows) {
      if (row.offset != awaited.offset) continue;
      text.append(BitName(row, awaited.mask)).append(" of ").append(row.name);
      text.append(" (").append(block.title).append(")");
    }
  }
  text.append(" at ").append(chip::Hex(awaited.offset, 4)).append(", which is clear after ");
  return text.append(std::to_string(monitor::LongWait::kFirstLook)).append(" loads");
}

}  // namespace board
