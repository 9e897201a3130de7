// Descriptions of registers for whoever explains bus traffic: the trace, the exported map, the
// chip model. The drivers do not use them.
#pragma once

#include "core/registers.h"

namespace monitor {

/// Never defined: a call of it while compiling is the error message.
[[noreturn]] void BadRegister(const char* what);

/// One register (or a run of byte registers) with its fields. Fields that overlap or leave the
/// register are compile-time errors.
struct RegisterRow {
  static constexpr unsigned kMaxFields = 20;

  std::uint16_t offset;
  std::uint8_t width;   ///< Bytes of one access: 1, 2 or 4.
  std::uint16_t count;  ///< Number of consecutive registers of that width.
  const char* name;
  const char* meaning;
  std::array<Field, kMaxFields> fields{};
  unsigned field_count = 0;

  template <std::unsigned_integral T>
  consteval RegisterRow(Reg<T> reg, std::initializer_list<Field> list = {})  // NOLINT: a row
      : offset(reg.offset), width(sizeof(T)), count(1), name(reg.name), meaning(reg.meaning) {
    AddFields(list);
  }

  template <std::size_t N>
  consteval RegisterRow(RegBytes<N> regs, std::initializer_list<Field> list = {})  // NOLINT: a row
      : offset(regs.offset), width(1), count(N), name(regs.name), meaning(regs.meaning) {
    AddFields(list);
  }

 private:
  consteval void AddFields(std::initializer_list<Field> list) {
    std::uint32_t used = 0;
    for (const Field& field : list) {
      const auto mask = field.Mask<std::uint32_t>();
      if (field.high >= 8U * width || field.low > field.high) BadRegister("field leaves register");
      if ((used & mask) != 0) BadRegister("fields overlap");
      used |= mask;
      fields[field_count++] = field;
    }
  }
};

}  // namespace monitor
