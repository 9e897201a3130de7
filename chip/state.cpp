#include "chip/state.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace chip {
namespace {

/// By bit.
constexpr std::array kPortNames{"wan", "lan", "dmz", "cpu"};

/// Takes a number that ends at `separator`, or at the end of the text, from its front. False when
/// there is none up to 255.
bool TakeByte(std::string_view& text, char separator, int base, std::uint8_t& byte) {
  const std::string_view part = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(part.size() + 1, text.size()));
  const auto result = std::from_chars(part.data(), part.data() + part.size(), byte, base);
  return result.ec == std::errc() && result.ptr == part.data() + part.size();
}

std::string AddressText(std::uint32_t value) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    text.append(std::to_string(value >> shift & 0xFF)).append(shift != 0 ? "." : "");
  }
  return text;
}

bool ParseAddress(const std::string& text, std::uint32_t& value) {
  std::string_view left = text;
  value = 0;
  for (unsigned i = 0; i < 4; ++i) {
    std::uint8_t byte = 0;
    if (!TakeByte(left, '.', 10, byte)) return false;
    value = value << 8 | byte;
  }
  return AddressText(value) == text;
}

bool ParseMac(std::string_view text, std::span<std::uint8_t, 6> value) {
  constexpr std::size_t kLength = 17;
  if (text.size() != kLength) return false;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (i != 0 && text[3 * i - 1] != ':') return false;
    std::string_view digits = text.substr(3 * i, 2);
    if (!TakeByte(digits, ':', 16, value[i])) return false;
  }
  return true;
}

/// Names of ports, each at most once, with one space between two.
bool ParsePorts(std::string_view text, std::uint8_t& value) {
  value = 0;
  if (text.empty()) return true;
  for (;;) {
    const std::string_view word = text.substr(0, text.find(' '));
    const auto* const port = std::find(kPortNames.begin(), kPortNames.end(), word);
    if (port == kPortNames.end()) return false;
    const unsigned bit = 1U << (port - kPortNames.begin());
    if ((value & bit) != 0) return false;
    value = static_cast<std::uint8_t>(value | bit);
    if (word.size() == text.size()) return true;
    text.remove_prefix(word.size() + 1);
  }
}

}  // namespace

void StateArchive::Address(const std::string& name, std::uint32_t& value) {
  std::string text = AddressText(value);
  Text(name, text);
  Require(ParseAddress(text, value), name, "is not an IP address such as 192.168.1.1");
}

void StateArchive::Mac(const std::string& name, std::span<std::uint8_t, 6> value) {
  std::string text;
  for (const std::uint8_t byte : value) {
    text.append(text.empty() ? "" : ":").append(chip::Hex(byte, 2));
  }
  Text(name, text);
  Require(ParseMac(text, value), name, "is not a MAC address such as 02:00:00:00:00:01");
}

void StateArchive::Ports(const std::string& name, std::uint8_t& value) {
  std::string text;
  for (unsigned i = 0; i < kPortNames.size(); ++i) {
    if ((value >> i & 1) != 0) text.append(text.empty() ? "" : " ").append(kPortNames[i]);
  }
  Text(name, text);
  Require(ParsePorts(text, value), name, "is not a list of wan, lan, dmz and cpu");
}

void StateArchive::Choice(const std::string& name, std::uint8_t& value,
                          std::span<const char* const> words) {
  std::string text = words[value];
  Text(name, text);
  const auto word = std::find(words.begin(), words.end(), text);
  Require(word != words.end(), name, "is not one of its possible values");
  value = static_cast<std::uint8_t>(word - words.begin());
}

}  // namespace chip
