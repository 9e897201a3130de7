// Entries of a table and the window of registers that shows one of them.
#pragma once

#include <type_traits>

#include "chip/entry_values.h"

namespace chip {

/// Parts of the window: those that have been stored, or are to be applied.
struct WindowParts {
  bool entry = false;
  bool counter = false;
  bool map = false;
};

/// Entries whose type lists their registers: `Entry::List(entry, visit)` calls `visit` with each
/// register, or with NoRegister, and the values that it holds.
template <typename EntryType, unsigned kCount>
class EntryTable {
 public:
  using Entry = EntryType;
  static constexpr unsigned kSlots = kCount;
  static constexpr bool kCounted = requires(Entry entry) { entry.counter; };

  [[nodiscard]] const std::array<Entry, kSlots>& Entries() const { return entries_; }

  /// A number that changes whenever an entry does, except by way of Mark.
  [[nodiscard]] std::uint64_t Generation() const { return generation_; }

  /// An entry that is going to be changed.
  Entry& Change(unsigned index) {
    ++generation_;
    return entries_[index];
  }

  /// An entry of which nothing is going to be changed but what no lookup depends on: its counter,
  /// its used bit.
  Entry& Mark(unsigned index) { return entries_[index]; }

  void Clear() {
    ++generation_;
    entries_.fill({});
  }

  /// Claims the registers of the window. `after_store` makes the hook of those that hold the entry
  /// (false) or its counter (true).
  template <typename MakeHook>
  static void Claim(RegisterFile& registers, MakeHook after_store) {
    Entry entry;
    Entry::List(entry, [&](auto reg, const auto& first, const auto&... /*others*/) {
      if constexpr (!std::is_same_v<decltype(reg), NoRegister>) {
        registers.Define(
            reg, {.notation = first.kNotation, .after_store = after_store(first.kIsCounter)});
      }
    });
  }

  /// Brings an entry into the window.
  void Load(RegisterFile& registers, unsigned index) const {
    Entry::List(entries_[index],
                [&](auto reg, const auto&... values) { LoadRegister(registers, reg, values...); });
  }

  /// Sets `parts` of an entry to what the window holds.
  void Apply(RegisterFile& registers, unsigned index, const WindowParts& parts) {
    if (parts.entry) ++generation_;
    Entry::List(entries_[index], [&](auto reg, const auto& first, const auto&... others) {
      if (first.kIsCounter ? parts.counter : parts.entry) {
        ApplyRegister(registers, reg, first, others...);
      }
    });
  }

  void State(StateArchive& archive, const char* name) {
    archive.Table(name, entries_, [&](Entry& entry) {
      Entry::List(entry,
                  [&](auto /*reg*/, const auto&... values) { (values.State(archive), ...); });
    });
    if (archive.Loading()) ++generation_;
  }

 private:
  template <typename T, typename... Values>
  static void LoadRegister(RegisterFile& registers, monitor::Reg<T> reg, const Values&... values) {
    const std::uint32_t old = registers.Get(reg);
    registers.Set(reg, (values.Bits(old) | ...));
  }
  template <std::size_t N, typename Mac>
  static void LoadRegister(RegisterFile& registers, monitor::RegBytes<N> regs, const Mac& mac) {
    registers.Set(regs, mac.value);
  }
  template <typename... Values>
  static void LoadRegister(RegisterFile& /*registers*/, NoRegister /*none*/,
                           const Values&... /*values*/) {}

  template <typename T, typename... Values>
  static void ApplyRegister(RegisterFile& registers, monitor::Reg<T> reg, const Values&... values) {
    const std::uint32_t content = registers.Get(reg);
    (values.Take(content), ...);
  }
  template <std::size_t N, typename Mac>
  static void ApplyRegister(RegisterFile& registers, monitor::RegBytes<N> regs, const Mac& mac) {
    mac.value = registers.Get(regs);
  }
  template <typename... Values>
  static void ApplyRegister(RegisterFile& /*registers*/, NoRegister /*none*/,
                            const Values&... /*values*/) {}

  std::array<Entry, kSlots> entries_{};
  std::uint64_t generation_ = 0;
};

}  // namespace chip
