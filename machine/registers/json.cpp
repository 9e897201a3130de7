#include <nlohmann/json.hpp>

#include "machine/registers/engines.h"
#include "machine/registers/register_blocks.h"
#include "machine/registers/writers.h"

namespace board {
namespace {

using Json = nlohmann::ordered_json;
using monitor::Field;
using monitor::RegisterRow;

const char* Word(BitUse use) {
  if (use == BitUse::kReadOnly) return "read-only";
  return use == BitUse::kOneClears ? "one-to-clear" : "read-write";
}

Json OfRegister(const ChipMap& chip, const RegisterRow& row) {
  Json json{{"name", row.name},        {"offset", row.offset},
            {"width", 8 * row.width},  {"count", row.count},
            {"meaning", row.meaning},  {"use", Word(chip.Use(row, AllBits(row)))},
            {"reset", chip.Reset(row)}};
  if (*row.on_load != '\0') json["on_load"] = row.on_load;
  json["fields"] = Json::array();
  for (unsigned i = 0; i < row.field_count; ++i) {
    const Field& field = row.fields[i];
    json["fields"].push_back({{"name", field.name},
                              {"high", field.high},
                              {"low", field.low},
                              {"meaning", field.meaning},
                              {"use", Word(chip.Use(row, field.Mask<std::uint32_t>()))}});
  }
  return json;
}

std::string NameAt(std::uint16_t offset) {
  for (const RegisterBlock& block : RegisterBlocks()) {
    for (const RegisterRow& row : block.rows) {
      if (row.offset == offset) return row.name;
    }
  }
  return "";
}

Json OfEngine(const EngineRow& engine) {
  Json json{{"name", engine.name},
            {"command", NameAt(engine.command)},
            {"start", engine.start.name},
            {"read_done", engine.read_done.name},
            {"write_done", engine.write_done.name}};
  if (*engine.write.name != '\0') json["write"] = engine.write.name;
  if (*engine.result.name != '\0') json["result"] = engine.result.name;
  Json fields = Json::array();
  for (const Field& field : engine.index_fields) fields.push_back(field.name);
  json["index"] = {{"register", NameAt(engine.index)}, {"fields", fields}};
  json["data"] = engine.data;
  return json;
}

}  // namespace

std::string WriteJson(const ChipMap& chip) {
  Json json{{"name", kChipName},
            {"version", BOARD_VERSION},
            {"byte_order", "big"},
            {"window", {{"address", monitor::kWindowAddress}, {"size", monitor::kWindowSize}}}};
  for (const RegisterBlock& block : RegisterBlocks()) {
    Json registers = Json::array();
    for (const RegisterRow& row : block.rows) registers.push_back(OfRegister(chip, row));
    json["blocks"].push_back(
        {{"name", block.name}, {"title", block.title}, {"registers", registers}});
  }
  for (const EngineRow& engine : Engines()) json["engines"].push_back(OfEngine(engine));
  return json.dump(2) + "\n";
}

}  // namespace board
