// The multicast engine of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"
#include "core/entry_map.h"

namespace chip {
namespace {

class McastEngine : public testing::Test {
 protected:
  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }

  /// A step: start, end of the pulse, wait.
  void Run(std::uint8_t start) {
    Store8(0x621, start);
    Store8(0x621, start & 0xFB);
    (void)Load8(0x621);
    ASSERT_EQ(Load8(0x621) & 0x03, 0x03);
  }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(McastEngine, IsReadyAtPowerOn) { EXPECT_EQ(Load8(0x621), 0x03); }

TEST_F(McastEngine, AWrittenGroupReadsBackAfterTheWindowHeldAnother) {
  Store8(0x622, 0x3F);
  chip_.registers.Store(0x61C, 4, 0xE0010203);
  Store8(0x620, 0xFA);
  Run(0x0D);

  Store8(0x622, 0x00);
  Run(0x06);
  EXPECT_EQ(chip_.registers.Load(0x61C, 4), 0U);
  EXPECT_EQ(Load8(0x620), 0);

  Store8(0x622, 0x3F);
  Run(0x06);
  EXPECT_EQ(chip_.registers.Load(0x61C, 4), 0xE0010203U);
  EXPECT_EQ(Load8(0x620), 0x1A);  // nothing above the valid bit exists
  EXPECT_TRUE(chip_.mcast.Entries()[0x3F].valid);
  EXPECT_EQ(chip_.mcast.Entries()[0x3F].ports, 0x0A);
}

TEST_F(McastEngine, AReadLoadsTheCounterWhateverTheCounterSelectSays) {
  chip_.mcast.Change(5).counter = 0x12345678;
  Store8(0x622, 0x05);
  Run(0x06);
  EXPECT_EQ(chip_.registers.Load(0x62C, 4), 0x12345678U);
  chip_.mcast.Change(5).counter = 9;
  Run(0x16);
  EXPECT_EQ(chip_.registers.Load(0x62C, 4), 9U);
}

TEST_F(McastEngine, ACounterWriteLeavesTheGroupAlone) {
  chip_.mcast.Change(5) = {.ip = 0xE0000001, .ports = 1, .valid = true, .counter = 7};
  chip_.registers.Store(0x61C, 4, 0xDEADBEEF);
  Run(0x06);  // a read forgets what was stored before it
  Store8(0x622, 0x05);
  chip_.registers.Store(0x62C, 4, 0x12345678);
  Run(0x1D);
  EXPECT_EQ(chip_.mcast.Entries()[5].counter, 0x12345678U);
  EXPECT_EQ(chip_.mcast.Entries()[5].ip, 0xE0000001U);
}

TEST_F(McastEngine, AnOverflowClearTakesAwayTheOnesAndRewritesNoGroup) {
  chip_.mcast.map = {0xFF, 0, 0, 0, 0, 0, 0, 0x81};
  chip_.mcast.Change(5).ip = 0xE0000001;
  Store8(0x622, 0x05);
  for (unsigned i = 0; i < 8; ++i) Store8(0x624 + i, i == 0 ? 0x80 : i == 7 ? 0x01 : 0x00);
  Run(0x0D);
  EXPECT_EQ(chip_.mcast.map, (monitor::EntryMap{0x7F, 0, 0, 0, 0, 0, 0, 0x80}));
  EXPECT_EQ(chip_.mcast.Entries()[5].ip, 0xE0000001U);

  Run(0x06);
  EXPECT_EQ(Load8(0x624), 0x7F);
  EXPECT_EQ(Load8(0x62B), 0x80);
}

TEST_F(McastEngine, AFailedStepForgetsWhatWasStored) {
  chip_.mcast.engine.SetFault({.kind = Fault::Kind::kFail});
  chip_.registers.Store(0x61C, 4, 0xE0010203);
  chip_.registers.Store(0x62C, 4, 0x12345678);
  Run(0x0D);
  chip_.mcast.engine.SetFault({});
  Run(0x0D);
  EXPECT_EQ(chip_.mcast.Entries()[0], McastTable::Entry{});
}

TEST_F(McastEngine, ResetEmptiesTheTable) {
  chip_.mcast.Change(5).ip = 0xE0000001;
  chip_.mcast.map[0] = 0xFF;
  Store8(0x621, 0x06);
  chip_.Reset();
  EXPECT_EQ(chip_.mcast.Entries()[5].ip, 0U);
  EXPECT_EQ(chip_.mcast.map[0], 0);
  EXPECT_EQ(Load8(0x621), 0x03);
}

}  // namespace
}  // namespace chip
