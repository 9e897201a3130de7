#include "console/format.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace monitor {
namespace {

/// What the format makes of its arguments in a buffer of `size` characters.
template <typename... Args>
std::string Cut(std::size_t size, std::type_identity_t<Format<Args...>> format,
                const Args&... args) {
  const FormatArg list[] = {FormatArg(args)..., FormatArg(0)};
  std::array<char, 400> out;
  out.fill('#');
  const std::size_t length = FormatText(out.data(), size, format.Text(), list);
  EXPECT_LT(length, size);
  EXPECT_EQ(out[length], '\0');
  EXPECT_EQ(out[size], '#') << "written past the buffer";
  return std::string(out.data(), length);
}

template <typename... Args>
std::string Text(std::type_identity_t<Format<Args...>> format, const Args&... args) {
  return Cut<Args...>(320, format, args...);
}

TEST(FormatText, PlainTextAndPercent) {
  EXPECT_EQ(Text(""), "");
  EXPECT_EQ(Text("IP: \n\r"), "IP: \n\r");
  EXPECT_EQ(Text("100%%"), "100%");
  EXPECT_EQ(Text("%%%x%%", 5), "%5%");
}

TEST(FormatText, HexadecimalWithWidthsAndZeros) {
  EXPECT_EQ(Text("%x", 0), "0");
  EXPECT_EQ(Text("%x %X", 0xABCDEF12U, 0xABCDEF12U), "abcdef12 ABCDEF12");
  EXPECT_EQ(Text("%2x|%2x|%2x", 5, 0x15, 0x115), " 5|15|115");
  EXPECT_EQ(Text("%02x|%04x|%08X", 5, 0xABC, 0xABC), "05|0abc|00000ABC");
  EXPECT_EQ(Text("%8x", 0x12345678), "12345678");
  EXPECT_EQ(Text("%-4x|", 0xAB), "ab  |");
}

TEST(FormatText, DecimalIsUnsigned) {
  EXPECT_EQ(Text("%d %d", 0, 4294967295U), "0 4294967295");
  EXPECT_EQ(Text("%5d|%-5d|%05d", 63, 63, 63), "   63|63   |00063");
}

TEST(FormatText, TextsAndCharacters) {
  EXPECT_EQ(Text("%s%s", "ab", ""), "ab");
  EXPECT_EQ(Text("%5s|%-5s|", "ab", "ab"), "   ab|ab   |");
  EXPECT_EQ(Text("%2s|%-2s|", "abc", "abc"), "abc|abc|");
  EXPECT_EQ(Text("%c%c", 'O', 'K'), "OK");
  EXPECT_EQ(Text("  %-8s %-36s\n\r", "l3", "d <index> [<number>]"),
            "  l3       d <index> [<number>]                \n\r");
}

TEST(FormatText, ValuesOfEveryWidth) {
  EXPECT_EQ(Text("%x %x %x", std::uint8_t{0xFF}, std::uint16_t{0xFFFF}, std::uint32_t{0xFFFFFFFF}),
            "ff ffff ffffffff");
}

TEST(FormatText, IsCutToItsBuffer) {
  EXPECT_EQ(Cut(5, "abcdef"), "abcd");
  EXPECT_EQ(Cut(5, "ab%s", "cdef"), "abcd");
  EXPECT_EQ(Cut(5, "ab%08x", 0x12345678), "ab12");
  EXPECT_EQ(Cut(5, "ab%8x", 1), "ab  ");
  EXPECT_EQ(Cut(5, "ab%-8sX", "c"), "abc ");
  EXPECT_EQ(Cut(5, "abcd"), "abcd");
  EXPECT_EQ(Cut(1, "abcd"), "");
}

TEST(FormatIp, FourBytesInDecimalMostSignificantFirst) {
  std::array<char, 17> out;
  out.fill('#');
  EXPECT_EQ(FormatIp(0, out.data()), 7U);
  EXPECT_STREQ(out.data(), "0.0.0.0");
  EXPECT_EQ(FormatIp(0xC0A80101, out.data()), 11U);
  EXPECT_STREQ(out.data(), "192.168.1.1");
  EXPECT_EQ(FormatIp(0x0A640901, out.data()), 10U);
  EXPECT_STREQ(out.data(), "10.100.9.1");
  EXPECT_EQ(FormatIp(0xFFFFFFFF, out.data()), 15U);
  EXPECT_STREQ(out.data(), "255.255.255.255");
  EXPECT_EQ(out[16], '#');
}

TEST(FormatIp, IsATextArgument) {
  EXPECT_EQ(Text("IP: %-15s|", IpText(0x01020304)), "IP: 1.2.3.4        |");
}

std::string Decimal(std::uint32_t value, unsigned digits, bool commas) {
  std::array<char, 32> out;
  out.fill('#');
  const unsigned length = FormatDecimal(value, out.data(), digits, commas);
  EXPECT_EQ(out[length], '#') << "terminated";
  return std::string(out.data(), length);
}

TEST(FormatDecimal, AsManyDigitsAsTheValueHas) {
  EXPECT_EQ(Decimal(0, 0, false), "0");
  EXPECT_EQ(Decimal(9, 0, false), "9");
  EXPECT_EQ(Decimal(10, 0, false), "10");
  EXPECT_EQ(Decimal(4294967295, 0, false), "4294967295");
}

TEST(FormatDecimal, AskedForDigitsBeginWithZeros) {
  EXPECT_EQ(Decimal(7, 3, false), "007");
  EXPECT_EQ(Decimal(0, 2, false), "00");
  EXPECT_EQ(Decimal(4294967295, 12, false), "004294967295");
}

TEST(FormatDecimal, CommasSeparateGroupsOfThreeFromTheEnd) {
  EXPECT_EQ(Decimal(1234567, 0, true), "1,234,567");
  EXPECT_EQ(Decimal(999, 0, true), "999");
  EXPECT_EQ(Decimal(1000, 0, true), "1,000");
  EXPECT_EQ(Decimal(4294967295, 0, true), "4,294,967,295");
  EXPECT_EQ(Decimal(7, 6, true), "000,007");
  EXPECT_EQ(Decimal(0, 0, true), "0");
}

TEST(FormatHexDigits, HighNibbleFirstUpperCaseWithoutTerminator) {
  constexpr std::uint8_t kField[] = {0x12, 0xAB, 0xF0};
  std::array<char, 8> out;
  out.fill('#');
  EXPECT_EQ(FormatHexDigits(kField, out.data(), 6), 1);
  EXPECT_EQ(std::string(out.data(), out.size()), "12ABF0##");
  out.fill('#');
  EXPECT_EQ(FormatHexDigits(kField, out.data(), 3), 1);
  EXPECT_EQ(std::string(out.data(), out.size()), "12A#####");
  out.fill('#');
  EXPECT_EQ(FormatHexDigits(kField, out.data(), 0), 1);
  EXPECT_EQ(std::string(out.data(), out.size()), "########");
}

}  // namespace
}  // namespace monitor
