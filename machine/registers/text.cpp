#include <iomanip>
#include <sstream>

#include "chip/hex.h"
#include "machine/registers/register_blocks.h"
#include "machine/registers/writers.h"
#include "system/phy_registers.h"

namespace board {
namespace {

using monitor::Field;
using monitor::FieldRow;
using monitor::RegisterRow;
using monitor::ValueName;
using monitor::ValueType;

constexpr char kHead[] =
    "Offsets are hexadecimal, from the start of the register window (50000000). The byte at the\n"
    "lowest offset is the most significant. Use: rw, ro read only, w1c a store of 1 clears.\n";

const char* Word(BitUse use) {
  if (use == BitUse::kReadOnly) return "ro";
  return use == BitUse::kOneClears ? "w1c" : "rw";
}

/// "15:8", "3".
std::string Bits(const Field& field) {
  const std::string low = std::to_string(field.low);
  return field.high == field.low ? low : std::to_string(field.high).append(":").append(low);
}

void Line(std::ostream& out, const std::string& place, unsigned bits, BitUse use,
          const std::string& name, const std::string& meaning) {
  out << "  " << std::left << std::setw(10) << place << std::right << std::setw(2) << bits << "  "
      << std::left << std::setw(4) << Word(use) << std::setw(22) << name << meaning << '\n';
}

/// ": 0 half, 1 full"; nothing where values have no names.
std::string Names(const ValueType& type) {
  std::string text;
  for (const ValueName& named : type.names) {
    text.append(text.empty() ? ": " : ", ").append(std::to_string(named.value));
    text.append(" ").append(named.name);
  }
  return text;
}

void Line(std::ostream& out, const FieldRow& field, BitUse use) {
  out << "    " << std::left << std::setw(12) << Bits(field) << std::setw(4) << Word(use) << "  "
      << std::setw(20) << field.name << field.meaning << Names(field.type) << '\n';
}

std::string Meaning(const RegisterRow& row) {
  std::string meaning = row.meaning;
  if (*row.on_load != '\0') meaning.append("; a load ").append(row.on_load);
  return meaning;
}

void Block(std::ostream& out, const ChipMap& chip, const RegisterBlock& block) {
  out << '\n' << block.title << '\n';
  for (const RegisterRow& row : block.rows) {
    std::string place = chip::Hex(row.offset, 4);
    if (row.count > 1) place.append("-").append(chip::Hex(row.offset + row.count - 1U, 4));
    Line(out, place, 8U * row.width, chip.Use(row, AllBits(row)), row.name, Meaning(row));
    for (unsigned i = 0; i < row.field_count; ++i) {
      const FieldRow& field = row.fields[i];
      Line(out, field, chip.Use(row, field.Mask<std::uint32_t>()));
    }
  }
}

void Phys(std::ostream& out) {
  out << "\nPHYs: registers by number, through MII_COMMAND\n";
  for (const RegisterRow& row : monitor::kPhyRegisters) {
    const BitUse use = PhyUse(row);
    Line(out, std::to_string(row.offset), 8U * row.width, use, row.name, Meaning(row));
    for (unsigned i = 0; i < row.field_count; ++i) Line(out, row.fields[i], use);
  }
}

}  // namespace

std::string WriteText(const ChipMap& chip) {
  std::ostringstream out;
  out << kHead;
  for (const RegisterBlock& block : RegisterBlocks()) Block(out, chip, block);
  Phys(out);
  return out.str();
}

}  // namespace board
