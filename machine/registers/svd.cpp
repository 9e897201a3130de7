#include <algorithm>
#include <sstream>

#include "chip/hex.h"
#include "machine/registers/register_blocks.h"
#include "machine/registers/writers.h"

namespace board {
namespace {

using monitor::FieldRow;
using monitor::RegisterRow;
using monitor::ValueKind;
using monitor::ValueName;
using monitor::ValueType;

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '&') {
      escaped += "&amp;";
    } else if (c == '<') {
      escaped += "&lt;";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string Number(std::uint32_t value) { return "0x" + chip::Hex(value); }

/// Elements, indented by their depth.
class Xml {
 public:
  void Begin(const std::string& tag, const std::string& attributes = "") {
    Indent();
    out_ << '<' << tag << attributes << ">\n";
    ++depth_;
  }
  void End(const char* tag) {
    --depth_;
    Indent();
    out_ << "</" << tag << ">\n";
  }
  void Leaf(const char* tag, const std::string& text) {
    Indent();
    out_ << '<' << tag << '>' << Escaped(text) << "</" << tag << ">\n";
  }
  [[nodiscard]] std::string Text() const { return out_.str(); }

 private:
  void Indent() { out_ << std::string(2 * depth_, ' '); }

  std::ostringstream out_{"<?xml version=\"1.0\" encoding=\"utf-8\"?>\n", std::ios::ate};
  std::size_t depth_ = 0;
};

void Access(Xml& xml, BitUse use) {
  xml.Leaf("access", use == BitUse::kReadOnly ? "read-only" : "read-write");
}

void OneClears(Xml& xml, BitUse use) {
  if (use == BitUse::kOneClears) xml.Leaf("modifiedWriteValues", "oneToClear");
}

/// The named bits of a set are not values of the field: any of them may be set together.
void Values(Xml& xml, const ValueType& type) {
  if (type.names.empty() || type.kind == ValueKind::kPortSet) return;
  xml.Begin("enumeratedValues");
  for (const ValueName& named : type.names) {
    xml.Begin("enumeratedValue");
    xml.Leaf("name", named.name);
    xml.Leaf("description", named.meaning);
    xml.Leaf("value", std::to_string(named.value));
    xml.End("enumeratedValue");
  }
  xml.End("enumeratedValues");
}

void Fields(Xml& xml, const ChipMap& chip, const RegisterRow& row) {
  if (row.field_count == 0) return;
  xml.Begin("fields");
  for (unsigned i = 0; i < row.field_count; ++i) {
    const FieldRow& field = row.fields[i];
    const BitUse use = chip.Use(row, field.Mask<std::uint32_t>());
    xml.Begin("field");
    xml.Leaf("name", field.name);
    xml.Leaf("description", field.meaning);
    xml.Leaf("lsb", std::to_string(field.low));
    xml.Leaf("msb", std::to_string(field.high));
    Access(xml, use);
    OneClears(xml, use);
    Values(xml, field.type);
    xml.End("field");
  }
  xml.End("fields");
}

void Register(Xml& xml, const ChipMap& chip, const RegisterRow& row, unsigned base) {
  const BitUse use = chip.Use(row, AllBits(row));
  xml.Begin("register");
  if (row.count > 1) {
    xml.Leaf("dim", std::to_string(row.count));
    xml.Leaf("dimIncrement", std::to_string(row.width));
  }
  xml.Leaf("name", row.count > 1 ? std::string(row.name) + "[%s]" : row.name);
  xml.Leaf("description", row.meaning);
  xml.Leaf("addressOffset", Number(row.offset - base));
  xml.Leaf("size", std::to_string(8 * row.width));
  Access(xml, use);
  xml.Leaf("resetValue", Number(chip.Reset(row)));
  xml.Leaf("resetMask", Number(AllBits(row)));
  OneClears(xml, use);
  if (*row.on_load != '\0') xml.Leaf("readAction", "modify");
  Fields(xml, chip, row);
  xml.End("register");
}

/// One for each run of registers without a gap.
void AddressBlocks(Xml& xml, const std::vector<const RegisterRow*>& rows, unsigned base) {
  for (auto row = rows.begin(); row != rows.end();) {
    const unsigned begin = (*row)->offset;
    unsigned end = begin;
    for (; row != rows.end() && (*row)->offset == end; ++row) end += (*row)->width * (*row)->count;
    xml.Begin("addressBlock");
    xml.Leaf("offset", Number(begin - base));
    xml.Leaf("size", Number(end - begin));
    xml.Leaf("usage", "registers");
    xml.End("addressBlock");
  }
}

void Peripheral(Xml& xml, const ChipMap& chip, const RegisterBlock& block) {
  std::vector<const RegisterRow*> rows;
  for (const RegisterRow& row : block.rows) rows.push_back(&row);
  std::sort(rows.begin(), rows.end(),
            [](const auto* a, const auto* b) { return a->offset < b->offset; });
  const unsigned base = rows.front()->offset;
  xml.Begin("peripheral");
  xml.Leaf("name", block.name);
  xml.Leaf("description", block.title);
  xml.Leaf("baseAddress", Number(monitor::kWindowAddress + base));
  AddressBlocks(xml, rows, base);
  xml.Begin("registers");
  for (const RegisterRow* row : rows) Register(xml, chip, *row, base);
  xml.End("registers");
  xml.End("peripheral");
}

/// In this format the byte order is a property of the processor.
void Processor(Xml& xml) {
  xml.Begin("cpu");
  xml.Leaf("name", "other");
  xml.Leaf("revision", "r0p0");
  xml.Leaf("endian", "big");
  xml.Leaf("mpuPresent", "false");
  xml.Leaf("fpuPresent", "false");
  xml.Leaf("nvicPrioBits", "0");
  xml.Leaf("vendorSystickConfig", "false");
  xml.End("cpu");
}

}  // namespace

std::string WriteSvd(const ChipMap& chip) {
  Xml xml;
  xml.Begin("device",
            " schemaVersion=\"1.3\" xmlns:xs=\"http://www.w3.org/2001/XMLSchema-instance\""
            " xs:noNamespaceSchemaLocation=\"CMSIS-SVD.xsd\"");
  xml.Leaf("name", kChipName);
  xml.Leaf("version", BOARD_VERSION);
  xml.Leaf("description",
           "Router system-on-chip. Registers are big-endian: the byte at the lowest address is the "
           "most significant.");
  Processor(xml);
  xml.Leaf("addressUnitBits", "8");
  xml.Leaf("width", "32");
  xml.Begin("peripherals");
  for (const RegisterBlock& block : RegisterBlocks()) Peripheral(xml, chip, block);
  xml.End("peripherals");
  xml.End("device");
  return xml.Text();
}

}  // namespace board
