#include "machine/state/state_reader.h"

#include <charconv>
#include <utility>

namespace board {
namespace {

using nlohmann::json;

/// The number that all of the text stands for in hexadecimal.
bool ParseHex(std::string_view text, std::uint64_t& value) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

}  // namespace

StateReader::StateReader(json state) { open_.push_back({"", std::move(state)}); }

void StateReader::Refuse(const std::string& name, const std::string& reason) const {
  const json::json_pointer pointer(open_.back().pointer);
  throw StateError((pointer / name).to_string() + ": " + reason);
}

json StateReader::Take(const std::string& name) {
  json& members = open_.back().value;
  const auto found = members.find(name);
  if (found == members.end()) Refuse(name, "is missing");
  json value = std::move(*found);
  members.erase(found);
  return value;
}

void StateReader::Text(const std::string& name, std::string& value) {
  const json taken = Take(name);
  if (!taken.is_string()) Refuse(name, "is not a string");
  value = taken.get<std::string>();
}

bool StateReader::Omits(const std::string& name, bool /*is_default*/) {
  return !open_.back().value.contains(name);
}

void StateReader::Enter(const std::string& name) {
  json value = Take(name);
  if (!value.is_object()) Refuse(name, "is not an object");
  open_.push_back({open_.back().pointer + "/" + name, std::move(value)});
}

void StateReader::ExpectNothingLeft() const {
  const json& value = open_.back().value;
  if (value.is_object() && !value.empty()) Refuse(value.begin().key(), "has no meaning here");
}

void StateReader::Leave() {
  ExpectNothingLeft();
  open_.pop_back();
}

void StateReader::EnterList(const std::string& name, std::size_t& size, std::size_t most) {
  json value = Take(name);
  if (!value.is_array()) Refuse(name, "is not a list");
  size = value.size();
  if (size > most) Refuse(name, "has more than " + std::to_string(most) + " elements");
  open_.push_back({open_.back().pointer + "/" + name, std::move(value)});
}

void StateReader::EnterElement() {
  Open& list = open_.back();
  const std::string name = std::to_string(list.next);
  json value = std::move(list.value[list.next++]);
  if (!value.is_object()) Refuse(name, "is not an object");
  open_.push_back({list.pointer + "/" + name, std::move(value)});
}

void StateReader::Flag(const std::string& name, bool& flag) {
  const json value = Take(name);
  if (!value.is_boolean()) Refuse(name, "is neither true nor false");
  flag = value.get<bool>();
}

std::vector<std::uint8_t> StateReader::TakeBytes(const std::string& name) {
  const json value = Take(name);
  std::vector<std::uint8_t> bytes;
  if (!value.is_string()) Refuse(name, "is not a string of hexadecimal digits");
  const std::string_view text = value.get_ref<const std::string&>();
  for (std::size_t i = 0; i < text.size(); i += 2) {
    std::uint64_t byte = 0;
    if (text.size() - i < 2 || !ParseHex(text.substr(i, 2), byte)) {
      Refuse(name, "is not a string of pairs of hexadecimal digits");
    }
    bytes.push_back(static_cast<std::uint8_t>(byte));
  }
  return bytes;
}

void StateReader::Bytes(const std::string& name, std::span<std::uint8_t> bytes) {
  const std::vector<std::uint8_t> taken = TakeBytes(name);
  if (taken.size() != bytes.size()) {
    Refuse(name,
           "has " + std::to_string(taken.size()) + " bytes, not " + std::to_string(bytes.size()));
  }
  std::copy(taken.begin(), taken.end(), bytes.begin());
}

void StateReader::Queue(const std::string& name, std::deque<std::uint8_t>& bytes) {
  const std::vector<std::uint8_t> taken = TakeBytes(name);
  bytes.assign(taken.begin(), taken.end());
}

void StateReader::Require(bool holds, const std::string& name, const std::string& reason) {
  if (!holds) Refuse(name, reason);
}

void StateReader::HexNumber(const std::string& name, std::uint64_t& number, std::uint64_t bits,
                            unsigned digits) {
  const json value = Take(name);
  const std::string text = value.is_string() ? value.get<std::string>() : "";
  if (text.size() != digits || !ParseHex(text, number)) {
    Refuse(name, "is not a string of " + std::to_string(digits) + " hexadecimal digits");
  }
  if ((number & ~bits) != 0) Refuse(name, "has bits set that do not exist");
}

void StateReader::DecimalNumber(const std::string& name, std::uint64_t& number,
                                std::uint64_t most) {
  const json value = Take(name);
  if (!value.is_number_unsigned()) Refuse(name, "is not a number");
  number = value.get<std::uint64_t>();
  if (number > most) Refuse(name, "is above " + std::to_string(most));
}

}  // namespace board
