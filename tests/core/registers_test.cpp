#include "core/registers.h"

#include <gtest/gtest.h>

#include <cstring>

#include "core/register_map.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

constexpr Reg8 kByte{0x123};
constexpr Reg16 kHalf{0x124};
constexpr Reg32 kWord{0x128};
constexpr RegBytes<4> kBytes{0x130};

/// What the processor loads from bytes in memory.
template <typename T>
T Loaded(const std::array<std::uint8_t, sizeof(T)>& bytes) {
  T value;
  std::memcpy(&value, bytes.data(), sizeof(T));
  return value;
}

TEST(Registers, TheByteAtTheLowestOffsetIsTheMostSignificant) {
  EXPECT_EQ(SwapBigEndian(Loaded<std::uint16_t>({0x12, 0x34})), 0x1234);
  EXPECT_EQ(SwapBigEndian(Loaded<std::uint32_t>({0x12, 0x34, 0x56, 0x78})), 0x12345678U);
}

TEST(Registers, ValuesAreStoredInThatOrderToo) {
  EXPECT_EQ(SwapBigEndian(std::uint16_t{0x1234}), Loaded<std::uint16_t>({0x12, 0x34}));
  EXPECT_EQ(SwapBigEndian(std::uint32_t{0x12345678}),
            Loaded<std::uint32_t>({0x12, 0x34, 0x56, 0x78}));
}

TEST(Registers, ReadsAndWritesAreOneAccessOfTheRegistersWidth) {
  ScriptedBus bus(R"(
    r8  0123 a7
    r16 0124 1234
    r32 0128 12345678
    w8  0123 a8
    w16 0124 4321
    w32 0128 87654321
  )");
  EXPECT_EQ(Read(kByte), 0xA7);
  EXPECT_EQ(Read(kHalf), 0x1234);
  EXPECT_EQ(Read(kWord), 0x12345678U);
  Write(kByte, 0xA8);
  Write(kHalf, 0x4321);
  Write(kWord, 0x87654321);
}

TEST(Registers, ModifySetsBeforeItKeeps) {
  ScriptedBus bus(R"(
    r8 0123 a5
    w8 0123 a2         # (a5 OR 0e) AND f2
  )");
  Modify(kByte, 0x0E, 0xF2);
}

TEST(Registers, FieldsAreSetClearedAndAssignedAmongTheirNeighbours) {
  constexpr Field kField{5, 4};
  ScriptedBus bus(R"(
    r8 0123 a5
    w8 0123 b5
    r8 0123 b5
    w8 0123 85
    r8 0123 5a
    w8 0123 7a
    r8 0123 5a
    w8 0123 4a
  )");
  SetBits(kByte, kField);
  ClearBits(kByte, kField);
  AssignBits(kByte, kField, true);
  AssignBits(kByte, kField, false);
}

TEST(Registers, HalvesComeFromTwoLoads) {
  ScriptedBus bus("r16 0124 1234\n r16 0124 5678");
  EXPECT_EQ(ReadHalves(kHalf), 0x1278);
}

TEST(Registers, RunsOfBytesGoUpwards) {
  ScriptedBus bus(R"(
    r8 0130 01
    r8 0131 02
    r8 0132 03
    r8 0133 04
    w8 0130 05
    w8 0131 06
    w8 0132 07
    w8 0133 08
    r8 0133 09
  )");
  std::array<std::uint8_t, 4> bytes{};
  ReadBytes(kBytes, bytes);
  EXPECT_EQ(bytes, (std::array<std::uint8_t, 4>{1, 2, 3, 4}));
  WriteBytes(kBytes, {5, 6, 7, 8});
  EXPECT_EQ(Read(kBytes[3]), 9);
}

TEST(Fields, MasksRunFromHighToLowInclusive) {
  EXPECT_EQ((Field{7, 0}.Mask()), 0xFF);
  EXPECT_EQ((Field{3, 0}.Mask()), 0x0F);
  EXPECT_EQ((Field{7, 7}.Mask()), 0x80);
  EXPECT_EQ((Field{6, 4}.Mask()), 0x70);
  EXPECT_EQ((Field{15, 8}.Mask<std::uint16_t>()), 0xFF00);
  EXPECT_EQ((Field{31, 0}.Mask<std::uint32_t>()), 0xFFFFFFFFU);
  EXPECT_EQ((Field{31, 31}.Mask<std::uint32_t>()), 0x80000000U);
}

TEST(Fields, GetAlignsRightAndDropsTheNeighbours) {
  EXPECT_EQ((Field{6, 4}.Get(std::uint8_t{0xDA})), 5);
  EXPECT_EQ((Field{0, 0}.Get(std::uint8_t{0xFE})), 0);
  EXPECT_EQ((Field{12, 5}.Get(std::uint16_t{0xF5BF})), 0xAD);
  EXPECT_EQ((Field{31, 28}.Get(std::uint32_t{0xA5555555})), 0xAU);
}

TEST(Fields, PutCutsTheValueToTheField) {
  EXPECT_EQ((Field{6, 4}.Put(5)), 0x50);
  EXPECT_EQ((Field{6, 4}.Put(0xFD)), 0x50);
  EXPECT_EQ((Field{15, 12}.Put<std::uint16_t>(0x1A)), 0xA000);
  EXPECT_EQ((Field{31, 0}.Put<std::uint32_t>(0x89ABCDEF)), 0x89ABCDEFU);
}

TEST(RegisterRows, DescribeRegistersOfEveryWidth) {
  constexpr Field kHigh{7, 4, "high", "upper half"};
  constexpr Field kLow{3, 0, "low", "lower half"};
  constexpr Field kTop{31, 31, "top", "top bit"};
  constexpr RegisterRow kRows[] = {
      {Reg8{0x100, "ONE", "a byte"}, {kHigh, kLow}},
      Reg16{0x102, "TWO", "a half"},
      {Reg32{0x104, "FOUR", "a word"}, {kTop}},
      RegBytes<6>{0x108, "SIX", "bytes"},
  };
  EXPECT_EQ(kRows[0].offset, 0x100);
  EXPECT_EQ(kRows[0].width, 1);
  EXPECT_EQ(kRows[0].count, 1);
  EXPECT_STREQ(kRows[0].name, "ONE");
  EXPECT_STREQ(kRows[0].meaning, "a byte");
  ASSERT_EQ(kRows[0].field_count, 2U);
  EXPECT_STREQ(kRows[0].fields[0].name, "high");
  EXPECT_STREQ(kRows[0].fields[1].name, "low");
  EXPECT_EQ(kRows[1].width, 2);
  EXPECT_EQ(kRows[1].field_count, 0U);
  EXPECT_EQ(kRows[2].width, 4);
  EXPECT_EQ(kRows[2].fields[0].high, 31U);
  EXPECT_EQ(kRows[3].width, 1);
  EXPECT_EQ(kRows[3].count, 6);
}

TEST(RegisterRows, SayWhatValuesStandFor) {
  static constexpr ValueName kModes[] = {{0, "slow", "slow mode"}, {2, "fast", "fast mode"}};
  constexpr Field kMode{7, 6, "mode", "mode"};
  constexpr Field kSize{5, 1, "size", "size"};
  constexpr Field kOn{0, 0, "on", "switch"};
  static constexpr RegisterRow kRows[] = {
      {Reg8{0x100, "ONE", "a byte"}, {{kMode, kModes}, kSize, kOn}},
      {Reg32{0x104, "IP", "an address"}, ValueKind::kIpv4Address},
      {RegBytes<6>{0x108, "MAC", "an address"}, ValueKind::kMacAddress},
      Reg16{0x110, "TWO", "a half"},
  };
  EXPECT_EQ(kRows[0].fields[0].type.kind, ValueKind::kEnumeration);
  ASSERT_EQ(kRows[0].fields[0].type.names.size(), 2U);
  EXPECT_EQ(kRows[0].fields[0].type.names[1].value, 2U);
  EXPECT_STREQ(kRows[0].fields[0].type.names[1].name, "fast");
  EXPECT_EQ(kRows[0].fields[1].type.kind, ValueKind::kNumber);
  EXPECT_EQ(kRows[0].fields[2].type.kind, ValueKind::kFlag);
  EXPECT_TRUE(kRows[0].fields[2].type.names.empty());
  EXPECT_EQ(kRows[1].type.kind, ValueKind::kIpv4Address);
  EXPECT_EQ(kRows[2].type.kind, ValueKind::kMacAddress);
  EXPECT_EQ(kRows[3].type.kind, ValueKind::kNumber);
}

}  // namespace
}  // namespace monitor
