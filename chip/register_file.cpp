#include "chip/register_file.h"

#include <algorithm>
#include <cassert>

#include "chip/hex.h"

namespace chip {
namespace {

std::string UnmappedText(std::uint32_t offset) { return "no register at " + Hex(offset, 4); }

}  // namespace

RegisterFile::RegisterFile() {
  row_at_.fill(kUnclaimed);
  load_flags_.fill(kSpecial);
  store_flags_.fill(kSpecial);
}

void RegisterFile::Claim(std::uint16_t offset, unsigned width, const char* name,
                         const Behaviour& behaviour) {
  assert(offset % width == 0 && offset + width <= kSize);
  const bool special_store =
      behaviour.read_only != 0 || behaviour.write_one_to_clear != 0 || behaviour.after_store;
  for (unsigned i = 0; i < width; ++i) {
    assert(row_at_[offset + i] == kUnclaimed);
    row_at_[offset + i] = static_cast<std::uint16_t>(rows_.size());
    load_flags_[offset + i] = FlagsOf(static_cast<bool>(behaviour.before_load));
    store_flags_[offset + i] = FlagsOf(special_store);
  }
  Disassemble(offset, width, behaviour.reset);
  rows_.push_back({offset, static_cast<std::uint8_t>(width), name, behaviour});
}

bool RegisterFile::ComplainOfAddress(std::uint32_t offset, unsigned width) {
  if (std::uint64_t{offset} + width > kSize) {
    Complain("access outside the window at " + Hex(offset, 4));
    return false;
  }
  Complain("access not aligned at " + Hex(offset, 4));
  return true;
}

const RegisterFile::Row* RegisterFile::WholeRow(std::uint32_t offset, unsigned width) const {
  const Row* const row = RowFrom(offset);
  return row != nullptr && row->width == width ? row : nullptr;
}

template <typename VisitRow, typename VisitUnmapped>
void RegisterFile::ForEachRow(std::uint32_t offset, unsigned width, VisitRow visit_row,
                              VisitUnmapped visit_unmapped) {
  std::uint32_t at = offset;
  while (at < offset + width) {
    const std::uint16_t index = row_at_[at];
    if (index == kUnclaimed) {
      ComplainOfUnmapped(at);
      visit_unmapped(at);
      ++at;
    } else {
      const Row& row = rows_[index];
      visit_row(row);
      at = row.offset + row.width;
    }
  }
}

void RegisterFile::Watch(std::function<void(const Access&)> observer) {
  observer_ = std::move(observer);
  watched_ = observer_ ? kWatched : 0;
  for (DispatchFlags* const flags : {&load_flags_, &store_flags_}) {
    for (std::uint8_t& one : *flags) one = FlagsOf((one & kSpecial) != 0);
  }
}

std::uint32_t RegisterFile::LoadSpecial(std::uint32_t offset, unsigned width) {
  const Row* const row = WholeRow(offset, width);
  if (row == nullptr || watched_ != 0) return LoadParts(offset, width);
  Refresh(*row);
  return Assemble(offset, width);
}

void RegisterFile::StoreSpecial(std::uint32_t offset, unsigned width, std::uint32_t value) {
  const Row* const row = WholeRow(offset, width);
  if (row == nullptr || watched_ != 0) return StoreParts(offset, width, value);
  const Behaviour& behaviour = row->behaviour;
  if ((behaviour.read_only | behaviour.write_one_to_clear) != 0) {
    return StoreToRow(*row, offset, WidthMask(width), value);
  }
  // Command bytes, which are stored to most, have no masks.
  Disassemble(offset, width, value);
  if (behaviour.after_store) behaviour.after_store(value & WidthMask(width));
}

std::uint32_t RegisterFile::LoadParts(std::uint32_t offset, unsigned width) {
  std::uint32_t value = WidthMask(width);
  if (IsProper(offset, width) || ComplainOfAddress(offset, width)) {
    ForEachRow(offset, width, Refresh, [](std::uint32_t) {});
    value = Assemble(offset, width);
  }
  if (observer_) observer_({.store = false, .width = width, .offset = offset, .value = value});
  return value;
}

void RegisterFile::StoreParts(std::uint32_t offset, unsigned width, std::uint32_t value) {
  if (observer_) observer_({.store = true, .width = width, .offset = offset, .value = value});
  if (!IsProper(offset, width) && !ComplainOfAddress(offset, width)) return;
  const auto store_part = [&](const Row& row) {
    // Align the access with the register; it may cover only part of it.
    const unsigned left = 32 + 8 * (row.offset + row.width - offset - width);
    const auto align = [left](std::uint32_t bits) {
      return static_cast<std::uint32_t>(std::uint64_t{bits} << left >> 32);
    };
    StoreToRow(row, offset, align(WidthMask(width)) & WidthMask(row.width), align(value));
  };
  // Bytes that belong to no register behave as plain storage.
  const auto store_byte = [&](std::uint32_t at) {
    Disassemble(at, 1, value >> (8 * (offset + width - 1 - at)));
  };
  ForEachRow(offset, width, store_part, store_byte);
}

void RegisterFile::StoreToRow(const Row& row, std::uint32_t offset, std::uint32_t reach,
                              std::uint32_t value) {
  const Behaviour& behaviour = row.behaviour;
  if ((behaviour.read_only & reach) == reach) ComplainOfStore(row, offset);
  const std::uint32_t stored = value & reach;
  const std::uint32_t old = Assemble(row.offset, row.width);
  const std::uint32_t ordinary = reach & ~behaviour.read_only & ~behaviour.write_one_to_clear;
  const std::uint32_t cleared = stored & behaviour.write_one_to_clear;
  Disassemble(row.offset, row.width, ((old & ~ordinary) | (stored & ordinary)) & ~cleared);
  if (behaviour.after_store) behaviour.after_store(stored);
}

const Behaviour* RegisterFile::BehaviourAt(std::uint32_t offset) const {
  return row_at_[offset] == kUnclaimed ? nullptr : &rows_[row_at_[offset]].behaviour;
}

void RegisterFile::Reset() {
  bytes_.fill(0);
  for (const Row& row : rows_) Disassemble(row.offset, row.width, row.behaviour.reset);
}

void RegisterFile::Complain(const std::string& text) {
  if (++complaints_[text] == 1 && on_complaint) on_complaint(text);
}

void RegisterFile::ComplainOfStore(const Row& row, std::uint32_t offset) {
  Complain("store to read-only " + row.name + " at " + Hex(offset, 4));
}

void RegisterFile::ComplainOfUnmapped(std::uint32_t offset) {
  if (++unmapped_accesses_[offset] == 1 && on_unmapped) on_unmapped(offset);
}

std::map<std::string, unsigned> RegisterFile::Complaints() const {
  auto all = complaints_;
  for (std::uint32_t offset = 0; offset < kSize; ++offset) {
    if (unmapped_accesses_[offset] != 0) all[UnmappedText(offset)] = unmapped_accesses_[offset];
  }
  return all;
}

void RegisterFile::ForgetComplaints() {
  complaints_.clear();
  unmapped_accesses_.fill(0);
}

const RegisterFile::Row* RegisterFile::RowFrom(std::uint32_t offset) const {
  if (offset >= kSize || row_at_[offset] == kUnclaimed) return nullptr;
  const Row& row = rows_[row_at_[offset]];
  return row.offset == offset ? &row : nullptr;
}

std::string RegisterFile::UniqueName(const Row& row, unsigned position) const {
  const Row* const next = RowFrom(row.offset + row.width);
  std::string name = row.name;
  if (position != 0 || (next != nullptr && next->name == name)) {
    name.append("[").append(std::to_string(position)).append("]");
  }
  return name;
}

void RegisterFile::State(StateArchive& archive) {
  archive.Group("registers", [&] {
    const Row* last = nullptr;
    unsigned position = 0;
    for (std::uint32_t offset = 0; offset < kSize; ++offset) {
      const Row* const row = RowFrom(offset);
      if (row == nullptr) continue;
      position = last != nullptr && last->name == row->name ? position + 1 : 0;
      last = row;
      if (row->behaviour.notation != Notation::kMac) {
        RowState(archive, *row, UniqueName(*row, position));
      } else if (position == 0) {
        MacState(archive, *row);
      }
    }
  });
  UnmappedState(archive);
}

void RegisterFile::RowState(StateArchive& archive, const Row& row, const std::string& name) {
  const Behaviour& behaviour = row.behaviour;
  std::uint32_t value = Assemble(row.offset, row.width);
  if (archive.Omits(name, value == behaviour.reset)) {
    value = behaviour.reset;
  } else if (behaviour.notation == Notation::kAddress) {
    archive.Address(name, value);
  } else {
    return archive.Bytes(name, std::span(bytes_).subspan(row.offset, row.width));
  }
  Disassemble(row.offset, row.width, value);
}

void RegisterFile::MacState(StateArchive& archive, const Row& first) {
  const auto mac = std::span(bytes_).subspan(first.offset).first<6>();
  const bool is_zero = std::all_of(mac.begin(), mac.end(), [](auto byte) { return byte == 0; });
  if (archive.Omits(first.name, is_zero)) {
    std::fill(mac.begin(), mac.end(), std::uint8_t{0});
  } else {
    archive.Mac(first.name, mac);
  }
}

/// Bytes that no register claims.
void RegisterFile::UnmappedState(StateArchive& archive) {
  archive.Group("no_register", [&] {
    for (std::uint32_t offset = 0; offset < kSize; ++offset) {
      if (row_at_[offset] != kUnclaimed) continue;
      if (archive.Omits(Hex(offset, 4), bytes_[offset] == 0)) {
        bytes_[offset] = 0;
      } else {
        archive.Hex(Hex(offset, 4), bytes_[offset]);
      }
    }
  });
}

}  // namespace chip
