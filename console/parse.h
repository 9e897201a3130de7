// Parsers for the words of a command line. They print nothing; a parser that returns false leaves
// its destination unchanged.
#pragma once

#include <array>
#include <cstdint>

#include "net/ethernet.h"

namespace monitor {

using net::MacAddress;

/// Parses `text` as a hexadecimal number of at least one and at most `width` digits (leading
/// zeros count) after an optional "0X", into a big-endian byte field of (width - 1) / 2 + 1
/// bytes: right-aligned, zero-extended. Digits may be of either case, the X only upper case.
[[nodiscard]] bool ParseHex(const char* text, std::uint8_t* field, unsigned width);

// ParseHex into host values. The number of digits is the most that is accepted.
[[nodiscard]] bool ParseHexDigit(const char* text, std::uint8_t& value);  // 1 digit
[[nodiscard]] bool ParseHex8(const char* text, std::uint8_t& value);      // 2 digits
[[nodiscard]] bool ParseHex16(const char* text, std::uint16_t& value);    // 4 digits
[[nodiscard]] bool ParseHex32(const char* text, std::uint32_t& value);    // 8 digits

/// ParseHex of 12 digits: the first pair of digits is the first byte.
[[nodiscard]] bool ParseMac(const char* text, MacAddress& mac);

/// Parses a dotted-decimal IPv4 address of exactly four parts, up to a space or the end of the
/// text. An empty part is 0. A part is refused when it exceeds 255 as a signed 32-bit number,
/// so one that wraps to a negative number is merged unchanged. The first part becomes the most
/// significant byte.
[[nodiscard]] bool ParseIp(const char* text, std::uint32_t& address);

/// Stores the value of the leading run of decimal digits (0 when there is none), modulo 2^32.
void ParseDecimal(const char* text, std::uint32_t& value);

/// 0 when both texts are identical, otherwise -1.
[[nodiscard]] int StrEqual(const char* a, const char* b);

/// True when the word is exactly `keyword`.
[[nodiscard]] inline bool WordIs(const char* word, const char* keyword) {
  return StrEqual(word, keyword) == 0;
}

/// A word of a command's language and the value that it stands for.
struct Keyword {
  const char* word;
  std::uint8_t value;
};

/// Finds `word` among `keywords` and stores its value.
template <std::size_t N>
[[nodiscard]] bool ParseKeyword(const char* word, const std::array<Keyword, N>& keywords,
                                std::uint8_t& value) {
  for (const Keyword& keyword : keywords) {
    if (!WordIs(word, keyword.word)) continue;
    value = keyword.value;
    return true;
  }
  return false;
}

/// The words that switch something on or off.
inline constexpr std::array<Keyword, 2> kEnableWords{{{"ENABLE", 1}, {"DISABLE", 0}}};

}  // namespace monitor
