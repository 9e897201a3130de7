#include "console/parse.h"

namespace monitor {
namespace {

constexpr unsigned kNoDigit = 16;

constexpr unsigned HexDigitValue(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
  if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A' + 10);
  if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a' + 10);
  return kNoDigit;
}

constexpr bool IsDecimalDigit(char c) { return c >= '0' && c <= '9'; }

/// Accumulates a run of decimal digits modulo 2^32 and moves `text` past it.
std::uint32_t TakeDecimal(const char*& text) {
  std::uint32_t value = 0;
  while (IsDecimalDigit(*text)) value = value * 10 + static_cast<std::uint32_t>(*text++ - '0');
  return value;
}

/// ParseHex into a host integer of N bytes.
template <unsigned N, typename T>
bool ParseHexInteger(const char* text, unsigned width, T& value) {
  std::array<std::uint8_t, N> field{};
  if (!ParseHex(text, field.data(), width)) return false;
  std::uint32_t number = 0;
  for (const std::uint8_t byte : field) number = number << 8 | byte;
  value = static_cast<T>(number);
  return true;
}

}  // namespace

bool ParseHex(const char* text, std::uint8_t* field, unsigned width) {
  if (text[0] == '0' && text[1] == 'X') text += 2;
  unsigned digits = 0;
  while (text[digits] != '\0') {
    if (HexDigitValue(text[digits]) == kNoDigit) return false;
    if (++digits > width) return false;
  }
  if (digits == 0) return false;

  const unsigned last = (width - 1) / 2;
  for (unsigned i = 0; i <= last; ++i) field[i] = 0;
  for (unsigned i = 0; i < digits; ++i) {
    const unsigned nibble = HexDigitValue(text[digits - 1 - i]);
    std::uint8_t& byte = field[last - i / 2];
    byte = static_cast<std::uint8_t>(byte | (i % 2 == 0 ? nibble : nibble << 4));
  }
  return true;
}

bool ParseHexDigit(const char* text, std::uint8_t& value) {
  return ParseHexInteger<1>(text, 1, value);
}

bool ParseHex8(const char* text, std::uint8_t& value) { return ParseHexInteger<1>(text, 2, value); }

bool ParseHex16(const char* text, std::uint16_t& value) {
  return ParseHexInteger<2>(text, 4, value);
}

bool ParseHex32(const char* text, std::uint32_t& value) {
  return ParseHexInteger<4>(text, 8, value);
}

bool ParseMac(const char* text, MacAddress& mac) { return ParseHex(text, mac.data(), 12); }

bool ParseIp(const char* text, std::uint32_t& address) {
  constexpr unsigned kParts = 4;
  std::uint32_t merged = 0;
  for (unsigned part = 0; part < kParts; ++part) {
    const std::uint32_t value = TakeDecimal(text);
    if (static_cast<std::int32_t>(value) > 255) return false;
    merged |= value << (8 * (kParts - 1 - part));
    const bool last = part == kParts - 1;
    const bool ended = *text == '\0' || *text == ' ';
    if (last != ended) return false;
    if (!last && *text++ != '.') return false;
  }
  address = merged;
  return true;
}

void ParseDecimal(const char* text, std::uint32_t& value) { value = TakeDecimal(text); }

int StrEqual(const char* a, const char* b) {
  while (*a == *b) {
    if (*a == '\0') return 0;
    ++a;
    ++b;
  }
  return -1;
}

}  // namespace monitor
