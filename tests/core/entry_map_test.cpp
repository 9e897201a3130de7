#include "core/entry_map.h"

#include <gtest/gtest.h>

namespace monitor {
namespace {

using LongMap = std::array<std::uint8_t, 16>;

TEST(EntryMaps, TheHighestEntryIsTheTopBitOfTheFirstByte) {
  EXPECT_EQ(OnlyEntry<8>(0x3F), (EntryMap{0x80, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(OnlyEntry<8>(0x38), (EntryMap{0x01, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(OnlyEntry<8>(0x37), (EntryMap{0, 0x80, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(OnlyEntry<8>(0x0A), (EntryMap{0, 0, 0, 0, 0, 0, 0x04, 0}));
  EXPECT_EQ(OnlyEntry<8>(0x07), (EntryMap{0, 0, 0, 0, 0, 0, 0, 0x80}));
  EXPECT_EQ(OnlyEntry<8>(0x00), (EntryMap{0, 0, 0, 0, 0, 0, 0, 0x01}));
}

TEST(EntryMaps, MayHave128Entries) {
  EXPECT_EQ(OnlyEntry<16>(0x7F), (LongMap{0x80}));
  EXPECT_EQ(OnlyEntry<16>(0x72), (LongMap{0, 0x04}));
  EXPECT_EQ(OnlyEntry<16>(0x40), (LongMap{0, 0, 0, 0, 0, 0, 0, 0x01}));
  EXPECT_EQ(OnlyEntry<16>(0x3F), (LongMap{0, 0, 0, 0, 0, 0, 0, 0, 0x80}));
  EXPECT_EQ(EntryByte(LongMap{}, 0x7F), 0U);
  EXPECT_EQ(EntryByte(LongMap{}, 0x00), 15U);
}

TEST(EntryMaps, EveryEntryHasABitOfItsOwn) {
  EntryMap all{};
  for (unsigned index = 0; index < 64; ++index) {
    const EntryMap map = OnlyEntry<8>(index);
    for (unsigned other = 0; other < 64; ++other) {
      EXPECT_EQ(EntryBit(map, other), other == index) << index << " " << other;
    }
    for (unsigned i = 0; i < 8; ++i) all[i] |= map[i];
  }
  EXPECT_EQ(all, kAllEntries);
}

TEST(EntryMaps, BitsAreReadAmongTheirNeighbours) {
  constexpr EntryMap kMap{0x7F, 0x80, 0, 0, 0, 0, 0, 0xFE};
  EXPECT_FALSE(EntryBit(kMap, 0x3F));
  EXPECT_TRUE(EntryBit(kMap, 0x3E));
  EXPECT_TRUE(EntryBit(kMap, 0x37));
  EXPECT_FALSE(EntryBit(kMap, 0x36));
  EXPECT_TRUE(EntryBit(kMap, 0x01));
  EXPECT_FALSE(EntryBit(kMap, 0x00));
}

}  // namespace
}  // namespace monitor
