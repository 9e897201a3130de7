// The PST engine of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class PstEngine : public testing::Test {
 protected:
  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }

  /// A step: start, end of the pulse, wait.
  void Run(std::uint8_t start, std::uint8_t end) {
    Store8(0xA0F, start);
    Store8(0xA0F, end);
    (void)Load8(0xA0F);
    ASSERT_EQ(Load8(0xA0F) & 0x03, 0x03);
  }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(PstEngine, IsReadyAtPowerOn) { EXPECT_EQ(Load8(0xA0F), 0x03); }

TEST_F(PstEngine, TheEndOfAWritePulseLeavesTheDoneBitsAlone) {
  Store8(0xA0F, 0x0D);  // write, write done written as 0
  Store8(0xA0F, 0x09);
  EXPECT_EQ(Load8(0xA0F), 0x09);
  EXPECT_EQ(Load8(0xA0F), 0x0B);
}

TEST_F(PstEngine, AWrittenEntryReadsBackAfterTheWindowHeldAnother) {
  Store8(0xA0E, 0x2D);  // entry 2, force, tag, valid
  chip_.registers.Store(0xA00, 4, 0x0A000001);
  chip_.registers.Store(0xA04, 2, 0x1234);
  chip_.registers.Store(0xA06, 2, 0x0005);
  for (std::uint8_t i = 0; i < 6; ++i) Store8(0xA08 + i, 0x50 + i);
  Run(0x0D, 0x09);

  Store8(0xA0E, 0x10);
  Run(0x06, 0x02);
  EXPECT_EQ(chip_.registers.Load(0xA00, 4), 0U);
  EXPECT_EQ(Load8(0xA0E), 0x10);  // the index stays, the entry is empty

  Store8(0xA0E, 0x20);
  Run(0x06, 0x02);
  EXPECT_EQ(chip_.registers.Load(0xA00, 4), 0x0A000001U);
  EXPECT_EQ(chip_.registers.Load(0xA04, 2), 0x1234U);
  EXPECT_EQ(chip_.registers.Load(0xA06, 2), 0x0005U);
  for (std::uint8_t i = 0; i < 6; ++i) EXPECT_EQ(Load8(0xA08 + i), 0x50 + i);
  EXPECT_EQ(Load8(0xA0E), 0x2D);
}

TEST_F(PstEngine, BitsWithoutAMeaningAreNotKeptInTheEntry) {
  Store8(0xA0E, 0xFF);
  Run(0x0D, 0x09);
  Store8(0xA0E, 0x30);
  Run(0x06, 0x02);
  EXPECT_EQ(Load8(0xA0E), 0x3F);
  const PppoeSession& session = chip_.pst.Entries()[3];
  EXPECT_TRUE(session.force && session.tag && session.used && session.valid);
}

TEST_F(PstEngine, AReadBringsAUsedBitSetBesideIt) {
  chip_.pst.Change(1).valid = true;
  chip_.pst.Mark(1).used = true;
  Store8(0xA0E, 0x10);
  Run(0x06, 0x02);
  EXPECT_EQ(Load8(0xA0E), 0x13);
}

TEST_F(PstEngine, IsFoundByItsNameForFaults) {
  ASSERT_TRUE(chip_.SetFault("pst", {.kind = Fault::Kind::kBusy}));
  EXPECT_EQ(Load8(0xA0F), 0x00);
}

TEST_F(PstEngine, ResetEmptiesTheTable) {
  chip_.pst.Change(1).valid = true;
  Store8(0xA0F, 0x06);
  chip_.Reset();
  EXPECT_FALSE(chip_.pst.Entries()[1].valid);
  EXPECT_EQ(Load8(0xA0F), 0x03);
}

}  // namespace
}  // namespace chip
