// Descriptions of registers for everything that explains bus traffic: the trace, the exported map,
// the chip model. The drivers do not use them.
#pragma once

#include <span>

#include "core/registers.h"

namespace monitor {

/// Never defined: a call of it while compiling is the error message.
[[noreturn]] void BadRegister(const char* what);

/// What a value stands for, and so how to show it.
enum class ValueKind : std::uint8_t {
  kNumber,
  kFlag,         ///< One bit: 1 yes, 0 no.
  kEnumeration,  ///< One of the named values.
  kBits,         ///< Each bit stands for a thing of its own; of a run, the bits of all registers.
  kPort,         ///< A port of the chip; the named values are the ports.
  kPortSet,      ///< Ports of the chip; the named values are their bits.
  kIndex,        ///< Number of an entry of a table, or of a session.
  kHandle,       ///< Number of a frame buffer.
  kCounter,      ///< Counts events.
  kAge,          ///< Age-out time, in 0.1 s.
  kLength,       ///< In bytes.
  kIpv4Address,
  kMacAddress,     ///< All registers of the run, first octet first.
  kMaskLength,     ///< Number of leading ones of an IPv4 mask.
  kTransportPort,  ///< Port number of TCP or UDP.
  kEtherType,
  kIpProtocol,
  kVlanId,
  kSessionId,  ///< PPPoE session ID.
};

/// A value that has a name.
struct ValueName {
  std::uint32_t value;
  const char* name;  ///< An identifier, unique in its list.
  const char* meaning;
};

/// What the values of a field, or of a register without fields, stand for.
struct ValueType {
  ValueKind kind = ValueKind::kNumber;
  std::span<const ValueName> names;  ///< Need not name every value.

  constexpr ValueType() = default;
  constexpr ValueType(ValueKind of) : kind(of) {}  // NOLINT: an entry of a row
  constexpr ValueType(ValueKind of, std::span<const ValueName> list) : kind(of), names(list) {}
  template <std::size_t N>
  constexpr ValueType(const ValueName (&list)[N])  // NOLINT: an entry of a row
      : ValueType(ValueKind::kEnumeration, list) {}
};

/// A field and what its values stand for. A field of one bit is a flag unless stated otherwise.
struct FieldRow : Field {
  ValueType type;

  constexpr FieldRow() : Field{} {}
  constexpr FieldRow(const Field& field)  // NOLINT: an entry of a row
      : Field(field), type(field.high == field.low ? ValueKind::kFlag : ValueKind::kNumber) {}
  constexpr FieldRow(const Field& field, ValueType values) : Field(field), type(values) {}
};

/// One register (or a run of registers) with its fields. Fields that overlap or leave the register
/// and named values that leave theirs are compile-time errors.
struct RegisterRow {
  static constexpr unsigned kMaxFields = 20;

  std::uint16_t offset;
  std::uint8_t width;   ///< Bytes of one access: 1, 2 or 4.
  std::uint16_t count;  ///< Number of consecutive registers of that width.
  const char* name;
  const char* meaning;
  ValueType type;  ///< Of a register without fields.
  std::array<FieldRow, kMaxFields> fields{};
  unsigned field_count = 0;
  const char* on_load;  ///< What a load does besides returning the value; mostly empty.

  template <std::unsigned_integral T>
  consteval RegisterRow(Reg<T> reg, std::initializer_list<FieldRow> list = {},  // NOLINT: a row
                        const char* load = "")
      : RegisterRow(reg.offset, sizeof(T), 1, reg.name, reg.meaning, {}, list, load) {}

  template <std::unsigned_integral T>
  consteval RegisterRow(Reg<T> reg, ValueType values)
      : RegisterRow(reg.offset, sizeof(T), 1, reg.name, reg.meaning, values, {}, "") {}

  template <std::size_t N>
  consteval RegisterRow(RegBytes<N> regs,  // NOLINT: a row
                        std::initializer_list<FieldRow> list = {}, const char* load = "")
      : RegisterRow(regs.offset, 1, N, regs.name, regs.meaning, {}, list, load) {}

  template <std::size_t N>
  consteval RegisterRow(RegBytes<N> regs, ValueType values)
      : RegisterRow(regs.offset, 1, N, regs.name, regs.meaning, values, {}, "") {}

 private:
  consteval RegisterRow(std::uint16_t at, std::uint8_t bytes, std::uint16_t registers,
                        const char* row_name, const char* row_meaning, ValueType values,
                        std::initializer_list<FieldRow> list, const char* load)
      : offset(at),
        width(bytes),
        count(registers),
        name(row_name),
        meaning(row_meaning),
        type(values),
        on_load(load) {
    CheckNames(values, 8U * bytes);
    AddFields(list);
  }

  consteval void AddFields(std::initializer_list<FieldRow> list) {
    std::uint32_t used = 0;
    for (const FieldRow& field : list) {
      const auto mask = field.Mask<std::uint32_t>();
      if (field.high >= 8U * width || field.low > field.high) BadRegister("field leaves register");
      if ((used & mask) != 0) BadRegister("fields overlap");
      CheckNames(field.type, field.high - field.low + 1);
      used |= mask;
      fields[field_count++] = field;
    }
  }

  consteval void CheckNames(const ValueType& values, unsigned bits) {
    for (const ValueName& named : values.names) {
      if (std::uint64_t{named.value} >> bits != 0) BadRegister("named value leaves its field");
    }
  }
};

}  // namespace monitor
