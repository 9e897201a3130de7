// The packet classifier of the model: its engine, 128 rules with counters and overflow bits, and
// the chain head.
#pragma once

#include "chip/classifier/rule.h"
#include "chip/indexed_table.h"

namespace chip {

struct ClassifierFacts : SeparateIndex {
  using Entry = Rule;
  static constexpr const char* kName = "cls";
  static constexpr monitor::Reg8 kCommand = monitor::kClsCommand;
  static constexpr monitor::Reg8 kIndex = monitor::kClsIndex;
  static constexpr monitor::Field kIndexBits = monitor::kClsRuleNumber;
  /// Rules below 0x38 have no bit.
  static constexpr monitor::RegBytes<9> kMap = monitor::kClsOverflow;
  static constexpr const char* kMapName = "overflow";

  /// A counter write clears both done bits, so the end of a write raises both.
  static constexpr EngineBits kEngineBits = [] {
    EngineBits bits = kTableEngineBits;
    bits.write_done |= bits.read_done;
    return bits;
  }();

  /// A write with the counter selected leaves the rule alone, any other leaves the overflow bits.
  static WindowParts Applied(std::uint8_t command, const WindowParts& stored) {
    const bool select = monitor::kClsCounterSelect.Get(command) != 0;
    return {
        .entry = stored.entry && !select, .counter = stored.counter, .map = stored.map && select};
  }
};

class Classifier : public IndexedTable<ClassifierFacts> {
 public:
  explicit Classifier(RegisterFile& registers) : IndexedTable(registers) {
    registers.Define(monitor::kClsHead);
  }

  [[nodiscard]] const char* Name() const override { return "classifier"; }
};

}  // namespace chip
