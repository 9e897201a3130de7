#include "console/parse.h"

#include "console/port_words.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace monitor {
namespace {

constexpr char kRefused[] = "refused";

/// The field that ParseHex fills, as digits. The bytes around it, and a refused field, have to
/// stay as they were.
std::string Hex(const char* text, unsigned width) {
  constexpr std::uint8_t kUntouched = 0xA5;
  constexpr std::size_t kGuard = 2;
  std::array<std::uint8_t, 16> bytes;
  bytes.fill(kUntouched);
  const bool parsed = ParseHex(text, bytes.data() + kGuard, width);
  const std::size_t size = parsed ? (width - 1) / 2 + 1 : 0;
  std::string digits;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i >= kGuard && i < kGuard + size) {
      constexpr char kDigits[] = "0123456789ABCDEF";
      digits += kDigits[bytes[i] >> 4];
      digits += kDigits[bytes[i] & 0x0F];
    } else {
      EXPECT_EQ(bytes[i], kUntouched) << "byte " << i << " of \"" << text << "\"";
    }
  }
  return parsed ? digits : kRefused;
}

TEST(ParseHex, FieldsAreRightAlignedBigEndianAndZeroExtended) {
  EXPECT_EQ(Hex("0X12345678", 8), "12345678");
  EXPECT_EQ(Hex("1234", 8), "00001234");
  EXPECT_EQ(Hex("ABC", 4), "0ABC");
  EXPECT_EQ(Hex("F", 1), "0F");
  EXPECT_EQ(Hex("0", 8), "00000000");
}

TEST(ParseHex, EachWidthTakesUpToItsOwnNumberOfDigits) {
  EXPECT_EQ(Hex("A", 1), "0A");
  EXPECT_EQ(Hex("AB", 1), kRefused);
  EXPECT_EQ(Hex("A", 2), "0A");
  EXPECT_EQ(Hex("AB", 2), "AB");
  EXPECT_EQ(Hex("ABC", 2), kRefused);
  EXPECT_EQ(Hex("A", 3), "000A");
  EXPECT_EQ(Hex("ABC", 3), "0ABC");
  EXPECT_EQ(Hex("ABCD", 3), kRefused);
  EXPECT_EQ(Hex("AB", 4), "00AB");
  EXPECT_EQ(Hex("ABCD", 4), "ABCD");
  EXPECT_EQ(Hex("ABCDE", 4), kRefused);
  EXPECT_EQ(Hex("1234567", 8), "01234567");
  EXPECT_EQ(Hex("12345678", 8), "12345678");
  EXPECT_EQ(Hex("123456789", 8), kRefused);
  EXPECT_EQ(Hex("1", 12), "000000000001");
  EXPECT_EQ(Hex("123456789ABC", 12), "123456789ABC");
  EXPECT_EQ(Hex("123456789ABCD", 12), kRefused);
  EXPECT_EQ(Hex("12345", 16), "0000000000012345");
  EXPECT_EQ(Hex("123456789ABCDEF", 16), "0123456789ABCDEF");
  EXPECT_EQ(Hex("123456789ABCDEF0", 16), "123456789ABCDEF0");
  EXPECT_EQ(Hex("123456789ABCDEF01", 16), kRefused);
}

TEST(ParseHex, LeadingZerosCountAsDigits) {
  EXPECT_EQ(Hex("00000001", 8), "00000001");
  EXPECT_EQ(Hex("000000001", 8), kRefused);
  EXPECT_EQ(Hex("00", 1), kRefused);
  EXPECT_EQ(Hex("0X000000001", 8), kRefused);
}

TEST(ParseHex, ThePrefixIsOptionalUpperCaseAndNotCounted) {
  EXPECT_EQ(Hex("0XF", 1), "0F");
  EXPECT_EQ(Hex("0XFF", 2), "FF");
  EXPECT_EQ(Hex("0XFFF", 2), kRefused);
  EXPECT_EQ(Hex("0x12", 2), kRefused);
  EXPECT_EQ(Hex("X12", 4), kRefused);
  EXPECT_EQ(Hex("1X2", 4), kRefused);
  EXPECT_EQ(Hex("00X1", 8), kRefused);
  EXPECT_EQ(Hex("0X0X1", 8), kRefused);
}

TEST(ParseHex, ThereMustBeADigit) {
  for (const unsigned width : {1U, 2U, 3U, 4U, 8U, 12U, 16U}) {
    EXPECT_EQ(Hex("", width), kRefused);
    EXPECT_EQ(Hex("0X", width), kRefused);
  }
}

TEST(ParseHex, DigitsOfEitherCaseAndNothingElse) {
  EXPECT_EQ(Hex("0123456789ABCDEF", 16), "0123456789ABCDEF");
  EXPECT_EQ(Hex("abcdef", 8), "00ABCDEF");
  EXPECT_EQ(Hex("aBcD", 4), "ABCD");
  // The neighbours of the digits and letters in the character set, and what words may hold.
  for (const char* const text : {"G1", "1G", "g", "/", ":", "@", "`", "-1", "+1", " 1", "1 ", "1.2",
                                 "=", "\t1", "1\x80", "\xFF"}) {
    EXPECT_EQ(Hex(text, 8), kRefused) << text;
  }
}

TEST(ParseHex, HostValuesOfEveryWidth) {
  std::uint8_t digit = 0xA5;
  EXPECT_TRUE(ParseHexDigit("F", digit));
  EXPECT_EQ(digit, 0x0F);
  std::uint8_t byte = 0xA5;
  EXPECT_TRUE(ParseHex8("7F", byte));
  EXPECT_EQ(byte, 0x7F);
  EXPECT_TRUE(ParseHex8("0X3", byte));
  EXPECT_EQ(byte, 0x03);
  std::uint16_t half = 0xA5A5;
  EXPECT_TRUE(ParseHex16("1234", half));
  EXPECT_EQ(half, 0x1234);
  EXPECT_TRUE(ParseHex16("123", half));
  EXPECT_EQ(half, 0x0123);
  std::uint32_t word = 0xA5A5A5A5;
  EXPECT_TRUE(ParseHex32("12345678", word));
  EXPECT_EQ(word, 0x12345678U);
  EXPECT_TRUE(ParseHex32("ABCDE", word));
  EXPECT_EQ(word, 0x000ABCDEU);
}

TEST(ParseHex, RefusedHostValuesStayAsTheyWere) {
  std::uint8_t byte = 0xA5;
  EXPECT_FALSE(ParseHexDigit("10", byte));
  EXPECT_FALSE(ParseHex8("123", byte));
  EXPECT_EQ(byte, 0xA5);
  std::uint16_t half = 0xA5A5;
  EXPECT_FALSE(ParseHex16("12345", half));
  EXPECT_EQ(half, 0xA5A5);
  std::uint32_t word = 0xA5A5A5A5;
  EXPECT_FALSE(ParseHex32("123456789", word));
  EXPECT_FALSE(ParseHex32("0X", word));
  EXPECT_EQ(word, 0xA5A5A5A5U);
}

TEST(ParseMac, TwelveDigitsAreSixBytesInOrder) {
  MacAddress mac{};
  EXPECT_TRUE(ParseMac("0050C2ABCDEF", mac));
  EXPECT_EQ(mac, (MacAddress{0x00, 0x50, 0xC2, 0xAB, 0xCD, 0xEF}));
  EXPECT_TRUE(ParseMac("123", mac));
  EXPECT_EQ(mac, (MacAddress{0, 0, 0, 0, 0x01, 0x23}));
  EXPECT_FALSE(ParseMac("0050C2ABCDEF0", mac));
  EXPECT_FALSE(ParseMac("00:50:C2", mac));
  EXPECT_EQ(mac, (MacAddress{0, 0, 0, 0, 0x01, 0x23}));
}

/// The address that ParseIp finds. A refused destination has to stay as it was.
std::optional<std::uint32_t> Ip(const char* text) {
  constexpr std::uint32_t kUntouched = 0xA5A5A5A5;
  std::uint32_t address = kUntouched;
  if (ParseIp(text, address)) return address;
  EXPECT_EQ(address, kUntouched) << text;
  return std::nullopt;
}

TEST(ParseIp, TheFirstPartIsTheMostSignificantByte) {
  EXPECT_EQ(Ip("192.168.1.1"), 0xC0A80101U);
  EXPECT_EQ(Ip("0.0.0.0"), 0U);
  EXPECT_EQ(Ip("255.255.255.255"), 0xFFFFFFFFU);
  EXPECT_EQ(Ip("1.2.3.4"), 0x01020304U);
  EXPECT_EQ(Ip("001.0002.00000000003.4"), 0x01020304U);
}

TEST(ParseIp, ThereMustBeExactlyFourParts) {
  for (const char* const text : {"", "1", "1.2", "1.2.3", "1.2.3.4.5", "1.2.3.4.", ".", "..",
                                 "....", "1.2.3.4..", "1.2.3 4"}) {
    EXPECT_EQ(Ip(text), std::nullopt) << text;
  }
}

TEST(ParseIp, AnEmptyPartIsZero) {
  EXPECT_EQ(Ip("1..2.3"), 0x01000203U);
  EXPECT_EQ(Ip(".1.2.3"), 0x00010203U);
  EXPECT_EQ(Ip("1.2.3."), 0x01020300U);
  EXPECT_EQ(Ip("..."), 0U);
}

TEST(ParseIp, ASpaceEndsTheAddress) {
  EXPECT_EQ(Ip("1.2.3.4 5"), 0x01020304U);
  EXPECT_EQ(Ip("1.2.3.4 "), 0x01020304U);
  EXPECT_EQ(Ip("1.2.3.4 .X"), 0x01020304U);
  EXPECT_EQ(Ip("1.2.3. 4"), 0x01020300U);
  EXPECT_EQ(Ip(" 1.2.3.4"), std::nullopt);
  EXPECT_EQ(Ip("1.2. 3.4"), std::nullopt);
  EXPECT_EQ(Ip(" "), std::nullopt);
}

TEST(ParseIp, PartsAreDecimalDigitsOnly) {
  for (const char* const text :
       {"1.2.3.A", "X.2.3.4", "1.2.3.4X", "-1.2.3.4", "+1.2.3.4", "1,2,3,4", "0X1.2.3.4",
        "1.2.3.4\t", "1.2.3:4", "1.2.3/.4", "1.2.\xFF.4"}) {
    EXPECT_EQ(Ip(text), std::nullopt) << text;
  }
}

TEST(ParseIp, APartAbove255IsRefusedWhereverItStands) {
  for (const char* const text : {"256.1.1.1", "1.256.1.1", "1.1.256.1", "1.1.1.256", "1.1.1.999",
                                 "2147483647.1.1.1", "1.1.1.2147483647"}) {
    EXPECT_EQ(Ip(text), std::nullopt) << text;
  }
}

TEST(ParseIp, APartThatWrapsToANegativeNumberIsMergedWhole) {
  // All ones, shifted into place, and ORed with the other parts.
  EXPECT_EQ(Ip("4294967295.2.3.4"), 0xFF020304U);
  EXPECT_EQ(Ip("1.4294967295.3.4"), 0xFFFF0304U);
  EXPECT_EQ(Ip("1.2.4294967295.4"), 0xFFFFFF04U);
  EXPECT_EQ(Ip("1.2.3.4294967295"), 0xFFFFFFFFU);
  // Only the top bit: every part but the last shifts it out.
  EXPECT_EQ(Ip("2147483648.2.3.4"), 0x00020304U);
  EXPECT_EQ(Ip("1.2.2147483648.4"), 0x01020004U);
  EXPECT_EQ(Ip("1.2.3.2147483648"), 0x81020300U);
}

TEST(ParseIp, APartCountsModulo32Bits) {
  EXPECT_EQ(Ip("4294967296.2.3.4"), 0x00020304U);
  EXPECT_EQ(Ip("4294967551.2.3.4"), 0xFF020304U);   // 2^32 + 255
  EXPECT_EQ(Ip("4294967552.2.3.4"), std::nullopt);  // 2^32 + 256
}

std::uint32_t Decimal(const char* text) {
  std::uint32_t value = 0xA5A5A5A5;
  ParseDecimal(text, value);
  return value;
}

TEST(ParseDecimal, TakesTheLeadingRunOfDigits) {
  EXPECT_EQ(Decimal("0"), 0U);
  EXPECT_EQ(Decimal("0042"), 42U);
  EXPECT_EQ(Decimal("12A9"), 12U);
  EXPECT_EQ(Decimal("12 9"), 12U);
  EXPECT_EQ(Decimal("4294967295"), 4294967295U);
  EXPECT_EQ(Decimal("4294967297"), 1U);
}

TEST(ParseDecimal, IsZeroWithoutADigitInFront) {
  EXPECT_EQ(Decimal(""), 0U);
  EXPECT_EQ(Decimal("A9"), 0U);
  EXPECT_EQ(Decimal(" 9"), 0U);
  EXPECT_EQ(Decimal("-9"), 0U);
}

TEST(StrEqual, ComparesToTheLetter) {
  EXPECT_EQ(StrEqual("", ""), 0);
  EXPECT_EQ(StrEqual("ENABLE", "ENABLE"), 0);
  EXPECT_EQ(StrEqual("ENABLE", "enable"), -1);
  EXPECT_EQ(StrEqual("ENABLE", "ENABLED"), -1);
  EXPECT_EQ(StrEqual("ENABLED", "ENABLE"), -1);
  EXPECT_EQ(StrEqual("", "E"), -1);
  EXPECT_EQ(StrEqual("E", ""), -1);
}

TEST(Keywords, AWholeWordGivesItsValue) {
  std::uint8_t value = 0xA5;
  EXPECT_TRUE(ParseKeyword("ENABLE", kEnableWords, value));
  EXPECT_EQ(value, 1);
  EXPECT_TRUE(ParseKeyword("DISABLE", kEnableWords, value));
  EXPECT_EQ(value, 0);
  EXPECT_TRUE(ParseKeyword("WAN", kPortWords, value));
  EXPECT_EQ(value, 1);
  EXPECT_TRUE(ParseKeyword("LAN", kPortWords, value));
  EXPECT_EQ(value, 2);
  EXPECT_TRUE(ParseKeyword("DMZ", kMacPortWords, value));
  EXPECT_EQ(value, 4);
  EXPECT_TRUE(ParseKeyword("CPU", kPortWords, value));
  EXPECT_EQ(value, 8);
}

TEST(Keywords, OtherWordsLeaveTheValueAlone) {
  std::uint8_t value = 0xA5;
  for (const char* const word : {"", "E", "ENABLED", "enable", "WAN", "1"}) {
    EXPECT_FALSE(ParseKeyword(word, kEnableWords, value)) << word;
  }
  EXPECT_FALSE(ParseKeyword("CPU", kMacPortWords, value));
  EXPECT_EQ(value, 0xA5);
}

}  // namespace
}  // namespace monitor
