#include "console/slot_range.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace monitor {
namespace {

constexpr unsigned kSlots = 64;

/// ParseSlotRange of up to two words.
bool Parse(int count, std::array<std::string, 2> text, SlotRange& range) {
  const std::array<char*, 2> words{text[0].data(), text[1].data()};
  return ParseSlotRange(count, words.data(), kSlots, range);
}

TEST(Slot, HasTwoDigitsAndLiesInTheTable) {
  std::uint8_t index = 7;
  EXPECT_TRUE(ParseSlot("3F", kSlots, index));
  EXPECT_EQ(index, 0x3F);
  EXPECT_TRUE(ParseSlot("0X0", kSlots, index));
  EXPECT_EQ(index, 0);
  for (const char* const word : {"40", "FF", "000", "", "G", "="}) {
    EXPECT_FALSE(ParseSlot(word, kSlots, index)) << word;
  }
  EXPECT_EQ(index, 0);
}

TEST(SlotRange, IsOneSlotWithoutANumber) {
  SlotRange range;
  ASSERT_TRUE(Parse(1, {"3F", "5"}, range));
  EXPECT_EQ(range.begin, 0x3FU);
  EXPECT_EQ(range.end, 0x40U);
  EXPECT_TRUE(range.single);
}

TEST(SlotRange, EndsAtTheLastSlot) {
  SlotRange range;
  ASSERT_TRUE(Parse(2, {"3E", "2"}, range));
  EXPECT_EQ(range.end, 0x40U);
  ASSERT_TRUE(Parse(2, {"3E", "FF"}, range));
  EXPECT_EQ(range.begin, 0x3EU);
  EXPECT_EQ(range.end, 0x40U);
  EXPECT_FALSE(range.single);
}

TEST(SlotRange, MayBeEmptyOrOfOneSlotByNumber) {
  SlotRange range;
  ASSERT_TRUE(Parse(2, {"5", "0"}, range));
  EXPECT_EQ(range.begin, range.end);
  EXPECT_FALSE(range.single);
  ASSERT_TRUE(Parse(2, {"5", "01"}, range));
  EXPECT_EQ(range.end, 6U);
  EXPECT_TRUE(range.single);
}

TEST(SlotRange, TakesOneOrTwoWordsThatParse) {
  SlotRange range;
  EXPECT_FALSE(Parse(0, {"5", "1"}, range));
  EXPECT_FALSE(Parse(3, {"5", "1"}, range));
  EXPECT_FALSE(Parse(2, {"5", "100"}, range));
  EXPECT_FALSE(Parse(2, {"5", "="}, range));
  EXPECT_FALSE(Parse(2, {"40", "0"}, range));
}

}  // namespace
}  // namespace monitor
