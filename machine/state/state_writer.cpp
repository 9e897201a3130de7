#include "machine/state/state_writer.h"

#include <utility>

#include "chip/hex.h"

namespace board {

using nlohmann::ordered_json;

void StateWriter::Add(const std::string& name, ordered_json value) {
  ordered_json& parent = open_.back().value;
  if (parent.is_array()) {
    parent.push_back(std::move(value));
  } else {
    // Names are unique, so there is no need to search for them.
    parent.get_ref<ordered_json::object_t&>().push_back({name, std::move(value)});
  }
}

bool StateWriter::Omits(const std::string& /*name*/, bool is_default) { return is_default; }

void StateWriter::Enter(const std::string& name) {
  open_.push_back({name, ordered_json::object()});
}

void StateWriter::Leave() {
  Open done = std::move(open_.back());
  open_.pop_back();
  Add(done.name, std::move(done.value));
}

void StateWriter::EnterList(const std::string& name, std::size_t& /*size*/, std::size_t /*most*/) {
  open_.push_back({name, ordered_json::array()});
}

void StateWriter::Bytes(const std::string& name, std::span<std::uint8_t> bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) text += chip::Hex(byte, 2);
  Add(name, text);
}

void StateWriter::Queue(const std::string& name, std::deque<std::uint8_t>& bytes) {
  std::vector<std::uint8_t> in_a_row(bytes.begin(), bytes.end());
  Bytes(name, in_a_row);
}

void StateWriter::Require(bool /*holds*/, const std::string& /*name*/,
                          const std::string& /*reason*/) {}

void StateWriter::HexNumber(const std::string& name, std::uint64_t& value, std::uint64_t /*bits*/,
                            unsigned digits) {
  Add(name, chip::Hex(value, digits));
}

void StateWriter::DecimalNumber(const std::string& name, std::uint64_t& value,
                                std::uint64_t /*most*/) {
  Add(name, value);
}

}  // namespace board
