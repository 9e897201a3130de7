#include <iomanip>
#include <sstream>

#include "chip/hex.h"
#include "machine/registers/register_blocks.h"
#include "machine/registers/writers.h"

namespace board {
namespace {

using monitor::Field;
using monitor::RegisterRow;

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

void Fields(std::ostream& out, const ChipMap& chip, const RegisterRow& row) {
  for (unsigned i = 0; i < row.field_count; ++i) {
    const Field& field = row.fields[i];
    out << "    " << std::left << std::setw(12) << Bits(field) << std::setw(4)
        << Word(chip.Use(row, field.Mask<std::uint32_t>())) << "  " << std::setw(20) << field.name
        << field.meaning << '\n';
  }
}

}  // namespace

std::string WriteText(const ChipMap& chip) {
  std::ostringstream out;
  out << kHead;
  for (const RegisterBlock& block : RegisterBlocks()) {
    out << '\n' << block.title << '\n';
    for (const RegisterRow& row : block.rows) {
      std::string place = chip::Hex(row.offset, 4);
      if (row.count > 1) place.append("-").append(chip::Hex(row.offset + row.count - 1U, 4));
      std::string meaning = row.meaning;
      if (*row.on_load != '\0') meaning.append("; a load ").append(row.on_load);
      Line(out, place, 8U * row.width, chip.Use(row, AllBits(row)), row.name, meaning);
      Fields(out, chip, row);
    }
  }
  return out.str();
}

}  // namespace board
