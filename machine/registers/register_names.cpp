#include "machine/registers/register_names.h"

#include "chip/hex.h"
#include "machine/registers/register_blocks.h"

namespace board {
namespace {

using monitor::RegisterRow;

}  // namespace

RegisterNames::RegisterNames() {
  for (const RegisterBlock& block : RegisterBlocks()) {
    for (const RegisterRow& row : block.rows) {
      for (unsigned i = 0; i < unsigned{row.width} * row.count; ++i) {
        rows_at_[row.offset + i].push_back(&row);
      }
    }
  }
}

const RegisterRow* RegisterNames::Find(std::uint32_t offset, unsigned width) const {
  const RegisterRow* around = nullptr;
  for (const RegisterRow* row : rows_at_[offset]) {
    const unsigned inside = (offset - row->offset) % row->width;
    if (width == row->width && inside == 0) return row;
    if (inside + width <= row->width) around = row;
  }
  return around;
}

std::string RegisterNames::Explain(const chip::Access& access) const {
  const RegisterRow* const row = Find(access.offset, access.width);
  if (row == nullptr) return "";
  const std::uint32_t distance = access.offset - row->offset;

  std::string text = row->name;
  if (row->count > 1) text.append("[").append(std::to_string(distance / row->width)).append("]");
  if (access.width != row->width) {
    const unsigned low = 8 * (row->width - distance % row->width - access.width);
    const unsigned high = low + 8 * access.width - 1;
    text.append("[").append(std::to_string(high)).append(":");
    return text.append(std::to_string(low)).append("]");
  }
  for (unsigned i = 0; i < row->field_count; ++i) {
    const monitor::Field& field = row->fields[i];
    text.append(" ").append(field.name).append("=").append(chip::Hex(field.Get(access.value)));
  }
  return text;
}

}  // namespace board
