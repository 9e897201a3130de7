#include <functional>
#include <nlohmann/json.hpp>

#include "mac/stat_counters_registers.h"
#include "machine/registers/engines.h"
#include "machine/registers/register_blocks.h"
#include "machine/registers/writers.h"
#include "system/mii_registers.h"
#include "system/phy_registers.h"

namespace board {
namespace {

using Json = nlohmann::ordered_json;
using monitor::Field;
using monitor::FieldRow;
using monitor::RegisterRow;
using monitor::ValueKind;
using monitor::ValueName;
using monitor::ValueType;

/// How the bits of a mask behave.
using UseOf = std::function<BitUse(std::uint32_t mask)>;

const char* Word(BitUse use) {
  if (use == BitUse::kReadOnly) return "read-only";
  return use == BitUse::kOneClears ? "one-to-clear" : "read-write";
}

const char* Word(ValueKind kind) {
  switch (kind) {
    case ValueKind::kNumber:
      return "number";
    case ValueKind::kFlag:
      return "flag";
    case ValueKind::kEnumeration:
      return "enumeration";
    case ValueKind::kBits:
      return "bits";
    case ValueKind::kPort:
      return "port";
    case ValueKind::kPortSet:
      return "port_set";
    case ValueKind::kIndex:
      return "index";
    case ValueKind::kHandle:
      return "handle";
    case ValueKind::kCounter:
      return "counter";
    case ValueKind::kAge:
      return "age";
    case ValueKind::kLength:
      return "length";
    case ValueKind::kIpv4Address:
      return "ipv4_address";
    case ValueKind::kMacAddress:
      return "mac_address";
    case ValueKind::kMaskLength:
      return "mask_length";
    case ValueKind::kTransportPort:
      return "transport_port";
    case ValueKind::kEtherType:
      return "ether_type";
    case ValueKind::kIpProtocol:
      return "ip_protocol";
    case ValueKind::kVlanId:
      return "vlan_id";
    case ValueKind::kSessionId:
      return "session_id";
  }
  return "";
}

Json OfNames(std::span<const ValueName> names) {
  Json json = Json::array();
  for (const ValueName& named : names) {
    json.push_back({{"value", named.value}, {"name", named.name}, {"meaning", named.meaning}});
  }
  return json;
}

void AddType(Json& json, const ValueType& type) {
  json["kind"] = Word(type.kind);
  if (!type.names.empty()) json["values"] = OfNames(type.names);
}

Json OfField(const FieldRow& field, BitUse use) {
  Json json{{"name", field.name},
            {"high", field.high},
            {"low", field.low},
            {"meaning", field.meaning},
            {"use", Word(use)}};
  AddType(json, field.type);
  return json;
}

/// The members that every register has; `place` names the one that says where it is.
Json OfRegister(const char* place, const RegisterRow& row, std::uint32_t reset, const UseOf& use) {
  Json json{{"name", row.name},   {place, row.offset},      {"width", 8 * row.width},
            {"count", row.count}, {"meaning", row.meaning}, {"use", Word(use(AllBits(row)))},
            {"reset", reset}};
  if (*row.on_load != '\0') json["on_load"] = row.on_load;
  if (row.field_count == 0) AddType(json, row.type);
  json["fields"] = Json::array();
  for (unsigned i = 0; i < row.field_count; ++i) {
    const FieldRow& field = row.fields[i];
    json["fields"].push_back(OfField(field, use(field.Mask<std::uint32_t>())));
  }
  return json;
}

Json OfBlock(const ChipMap& chip, const RegisterBlock& block) {
  Json json{{"name", block.name}, {"title", block.title}};
  for (const RegisterRow& row : block.rows) {
    const UseOf use = [&](std::uint32_t mask) { return chip.Use(row, mask); };
    json["registers"].push_back(OfRegister("offset", row, chip.Reset(row), use));
  }
  return json;
}

Json OfPhys() {
  Json json{{"engine", "mii"}, {"addresses", OfNames(monitor::kPhyAddressNames)}};
  for (const RegisterRow& row : monitor::kPhyRegisters) {
    const UseOf use = [&](std::uint32_t) { return PhyUse(row); };
    json["registers"].push_back(OfRegister("number", row, PhyReset(row), use));
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
            {"start", engine.fields.start.name},
            {"read_done", engine.fields.read_done.name},
            {"write_done", engine.fields.write_done.name}};
  if (engine.fields.write) json["write"] = engine.fields.write->name;
  if (engine.fields.result) json["result"] = engine.fields.result->name;
  Json fields = Json::array();
  for (const Field& field : engine.index_fields) fields.push_back(field.name);
  json["index"] = {{"register", NameAt(engine.index)}, {"fields", fields}};
  json["data"] = engine.data;
  return json;
}

Json OfCounter(unsigned index, const monitor::StatCounterRow& row) {
  const bool first_word = row.word == monitor::StatWord::kA;
  const Field slice = row.Slice();
  return {{"name", row.name},
          {"index", index},
          {"group", row.group},
          {"register", first_word ? monitor::kStatWordA.name : monitor::kStatWordB.name},
          {"high", slice.high},
          {"low", slice.low}};
}

}  // namespace

std::string WriteJson(const ChipMap& chip) {
  Json json{{"name", kChipName},
            {"version", BOARD_VERSION},
            {"byte_order", "big"},
            {"window", {{"address", monitor::kWindowAddress}, {"size", monitor::kWindowSize}}}};
  for (const RegisterBlock& block : RegisterBlocks()) {
    json["blocks"].push_back(OfBlock(chip, block));
  }
  for (const EngineRow& engine : Engines()) json["engines"].push_back(OfEngine(engine));
  json["phy"] = OfPhys();
  for (unsigned i = 0; i < monitor::kStatCounterRows.size(); ++i) {
    json["counters"].push_back(OfCounter(i, monitor::kStatCounterRows[i]));
  }
  return json.dump(2) + "\n";
}

}  // namespace board
