#include "machine/registers/chip_map.h"

namespace board {

ChipMap::ChipMap() : chip_(std::make_unique<chip::RouterChip>()) {}

std::uint32_t ChipMap::Reset(const monitor::RegisterRow& row) const {
  std::uint32_t value = 0;
  for (const std::uint8_t byte : chip_->registers.Snapshot().subspan(row.offset, row.width)) {
    value = value << 8 | byte;
  }
  return value;
}

BitUse ChipMap::Use(const monitor::RegisterRow& row, std::uint32_t mask) const {
  const chip::Behaviour* const behaviour = chip_->registers.BehaviourAt(row.offset);
  if (behaviour == nullptr) return BitUse::kReadWrite;
  if ((behaviour->read_only & mask) == mask) return BitUse::kReadOnly;
  const bool one_clears = (behaviour->write_one_to_clear & mask) == mask;
  return one_clears ? BitUse::kOneClears : BitUse::kReadWrite;
}

std::uint32_t AllBits(const monitor::RegisterRow& row) {
  return monitor::Field{8U * row.width - 1, 0}.Mask<std::uint32_t>();
}

}  // namespace board
