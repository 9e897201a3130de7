// The ARP engine of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"
#include "core/entry_map.h"

namespace chip {
namespace {

class ArpEngine : public testing::Test {
 protected:
  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }

  /// A step: start, end of the pulse, wait.
  void Run(std::uint8_t start) {
    Store8(0x63B, start);
    Store8(0x63B, start & 0xFB);
    (void)Load8(0x63B);
    ASSERT_EQ(Load8(0x63B) & 0x03, 0x03);
  }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(ArpEngine, IsReadyAtPowerOn) { EXPECT_EQ(Load8(0x63B), 0x03); }

TEST_F(ArpEngine, AWrittenEntryReadsBackAfterTheWindowHeldAnother) {
  Store8(0x63C, 0x3F);
  Store8(0x63D, 0xFF);
  chip_.registers.Store(0x630, 4, 0x0A000002);
  for (unsigned i = 0; i < 6; ++i) Store8(0x634 + i, static_cast<std::uint8_t>(0x11 * i));
  Run(0x0D);

  Store8(0x63C, 0x00);
  Run(0x06);
  EXPECT_EQ(chip_.registers.Load(0x630, 4), 0U);
  EXPECT_EQ(Load8(0x635), 0);
  EXPECT_EQ(Load8(0x63D), 0);

  Store8(0x63C, 0x3F);
  Run(0x06);
  EXPECT_EQ(chip_.registers.Load(0x630, 4), 0x0A000002U);
  for (unsigned i = 0; i < 6; ++i) EXPECT_EQ(Load8(0x634 + i), 0x11 * i);
  EXPECT_EQ(Load8(0x63D), 0x01);  // only the valid bit exists
}

TEST_F(ArpEngine, AReferenceClearTakesAwayTheOnesAndRewritesNoEntry) {
  chip_.arp.map = {0x81, 0, 0, 0, 0, 0, 0, 0xFF};
  chip_.arp.Change(5).ip = 0x0A000002;
  Store8(0x63C, 0x05);
  for (unsigned i = 0; i < 8; ++i) Store8(0x640 + i, i == 0 ? 0x80 : i == 7 ? 0x01 : 0x00);
  Run(0x0D);
  EXPECT_EQ(chip_.arp.map, (monitor::EntryMap{0x01, 0, 0, 0, 0, 0, 0, 0xFE}));
  EXPECT_EQ(chip_.arp.Entries()[5].ip, 0x0A000002U);

  Run(0x06);
  EXPECT_EQ(Load8(0x640), 0x01);
  EXPECT_EQ(Load8(0x647), 0xFE);
}

TEST_F(ArpEngine, AnEntryWriteClearsNoReference) {
  chip_.arp.map = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  Run(0x06);
  Store8(0x63C, 0x05);
  Store8(0x63D, 0x01);
  Run(0x0D);
  EXPECT_TRUE(chip_.arp.Entries()[5].valid);
  EXPECT_EQ(chip_.arp.map, monitor::kAllEntries);
}

TEST_F(ArpEngine, AFailedStepForgetsWhatWasStored) {
  chip_.arp.engine.SetFault({.kind = Fault::Kind::kFail});
  chip_.registers.Store(0x630, 4, 0x0A000002);
  Store8(0x63D, 0x01);
  Run(0x0D);
  chip_.arp.engine.SetFault({});
  Run(0x0D);
  EXPECT_EQ(chip_.arp.Entries()[0], ArpTable::Entry{});
}

TEST_F(ArpEngine, ResetEmptiesTheTable) {
  chip_.arp.Change(5).valid = true;
  chip_.arp.map[0] = 0xFF;
  Store8(0x63B, 0x06);
  chip_.Reset();
  EXPECT_FALSE(chip_.arp.Entries()[5].valid);
  EXPECT_EQ(chip_.arp.map[0], 0);
  EXPECT_EQ(Load8(0x63B), 0x03);
}

}  // namespace
}  // namespace chip
