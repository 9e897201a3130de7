// What the tables have in common that are reached through an index, a window and an engine. The
// facts of each are in a structure of its own, see tables/l3_route.h.
#pragma once

#include <utility>

#include "chip/block.h"
#include "chip/engine.h"
#include "chip/entry_table.h"

namespace chip {

/// Facts of most tables: a write applies only what has been stored since the last start.
struct SeparateIndex {
  static constexpr bool kSharesRegister = false;
  static constexpr EngineBits kEngineBits = kTableEngineBits;
  static constexpr monitor::RegBytes<0> kMap{};  ///< None.

  /// The parts that a write applies, of those stored since the last start.
  static WindowParts Applied(std::uint8_t /*command*/, const WindowParts& stored) { return stored; }
};

/// Facts of tables whose index shares a register with the entry, so that it is always stored: a
/// write applies the whole window.
struct SharedIndex : SeparateIndex {
  static constexpr bool kSharesRegister = true;

  static WindowParts Applied(std::uint8_t /*command*/, const WindowParts& /*stored*/) {
    return {.entry = true};
  }
};

template <typename Facts>
class IndexedTable : public EntryTable<typename Facts::Entry,
                                       1U << (Facts::kIndexBits.high - Facts::kIndexBits.low + 1)>,
                     public Block {
 public:
  using Map = decltype(std::declval<RegisterFile>().Get(Facts::kMap));

  explicit IndexedTable(RegisterFile& registers)
      : engine(registers, Facts::kName, Facts::kCommand, Facts::kEngineBits,
               [this](std::uint8_t command) { return Run(command); }),
        registers_(registers) {
    if constexpr (!Facts::kSharesRegister) registers.Define(Facts::kIndex);
    this->Claim(registers, [this](bool counter) {
      return Note(counter ? &WindowParts::counter : &WindowParts::entry);
    });
    registers.Define(Facts::kMap, {.after_store = Note(&WindowParts::map)});
    engine.on_end = [this] { stored_ = {}; };
  }
  IndexedTable(const IndexedTable&) = delete;
  IndexedTable& operator=(const IndexedTable&) = delete;

  [[nodiscard]] const char* Name() const override { return Facts::kName; }

  void Reset() override {
    this->Clear();
    map.fill(0);
    stored_ = {};
    engine.Reset();
  }

  /// Sets the entry's bit in the map, if it has one.
  void SetMapBit(unsigned index) {
    const unsigned byte = (this->kSlots - 1 - index) / 8;
    if (byte < map.size()) map[byte] |= static_cast<std::uint8_t>(1U << (index & 7));
  }

  void State(StateArchive& archive) override {
    EntryTable<typename Facts::Entry, IndexedTable::kSlots>::State(archive, "entries");
    if constexpr (kMapped) archive.Bytes(Facts::kMapName, map);
    if constexpr (!Facts::kSharesRegister) {
      archive.Group("stored_since_start", [&] {
        archive.Flag("entry", stored_.entry);
        if constexpr (IndexedTable::kCounted) archive.Flag("counter", stored_.counter);
        if constexpr (kMapped) archive.Flag(Facts::kMapName, stored_.map);
      });
    }
    engine.State(archive);
  }

  [[nodiscard]] std::vector<FaultPoint*> FaultPoints() override { return {&engine}; }

  /// Overflow or reference bits, highest entry first, as their registers show them.
  Map map{};
  Engine engine;

 private:
  static constexpr bool kMapped = std::tuple_size_v<Map> != 0;

  /// A hook that notes that a part has been stored; none where a write applies every part.
  std::function<void(std::uint32_t)> Note(bool WindowParts::*part) {
    if constexpr (Facts::kSharesRegister) return nullptr;
    return [this, part](std::uint32_t /*stored*/) { stored_.*part = true; };
  }

  bool Run(std::uint8_t command) {
    const unsigned index = Facts::kIndexBits.Get(registers_.Get(Facts::kIndex));
    if (monitor::kEngineWrite.Get(command) == 0) {
      this->Load(registers_, index);
      registers_.Set(Facts::kMap, map);
      return true;
    }
    const WindowParts parts = Facts::Applied(command, stored_);
    this->Apply(registers_, index, parts);
    if (parts.map) ClearMapBits(registers_.Get(Facts::kMap));
    return true;
  }

  void ClearMapBits(const Map& ones) {
    for (unsigned i = 0; i < ones.size(); ++i) map[i] &= static_cast<std::uint8_t>(~ones[i]);
  }

  RegisterFile& registers_;
  WindowParts stored_;
};

}  // namespace chip
