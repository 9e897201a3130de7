// Descriptions of registers for everything that explains bus traffic: the trace, the exported map,
// the chip model. The drivers do not use them.
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
  const char* on_load;  ///< What a load does besides returning the value; mostly empty.

  template <std::unsigned_integral T>
  consteval RegisterRow(Reg<T> reg, std::initializer_list<Field> list = {},  // NOLINT: a row
                        const char* load = "")
      : RegisterRow(reg.offset, sizeof(T), 1, reg.name, reg.meaning, list, load) {}

  template <std::size_t N>
  consteval RegisterRow(RegBytes<N> regs, std::initializer_list<Field> list = {},  // NOLINT: a row
                        const char* load = "")
      : RegisterRow(regs.offset, 1, N, regs.name, regs.meaning, list, load) {}

 private:
  consteval RegisterRow(std::uint16_t at, std::uint8_t bytes, std::uint16_t registers,
                        const char* row_name, const char* row_meaning,
                        std::initializer_list<Field> list, const char* load)
      : offset(at),
        width(bytes),
        count(registers),
        name(row_name),
        meaning(row_meaning),
        on_load(load) {
    AddFields(list);
  }

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
