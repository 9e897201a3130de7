// The PXT engine of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class PxtEngine : public testing::Test {
 protected:
  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }

  /// A step: start, end of the pulse, wait.
  void Run(std::uint8_t start, std::uint8_t end) {
    Store8(0xA3A, start);
    Store8(0xA3A, end);
    (void)Load8(0xA3A);
    ASSERT_EQ(Load8(0xA3A) & 0x03, 0x03);
  }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(PxtEngine, IsReadyAtPowerOn) { EXPECT_EQ(Load8(0xA3A), 0x03); }

TEST_F(PxtEngine, AWrittenEntryReadsBackAfterTheWindowHeldAnother) {
  for (std::uint8_t i = 0; i < 6; ++i) {
    Store8(0xA20 + i, 0x20 + i);
    Store8(0xA28 + i, 0x80 + i);
  }
  for (std::uint32_t offset = 0xA30; offset < 0xA38; offset += 2) {
    chip_.registers.Store(offset, 2, 0x1000 + offset);
  }
  Store8(0xA38, 0x77);
  Store8(0xA39, 0xA1);  // port 2, entry 2, valid
  Run(0x0D, 0x09);

  Store8(0xA39, 0x10);
  Run(0x06, 0x02);
  EXPECT_EQ(Load8(0xA20), 0);
  EXPECT_EQ(chip_.registers.Load(0xA36, 2), 0U);
  EXPECT_EQ(Load8(0xA38), 0);
  EXPECT_EQ(Load8(0xA39), 0x10);  // the index stays, the entry is empty

  Store8(0xA39, 0x20);
  Run(0x06, 0x02);
  for (std::uint8_t i = 0; i < 6; ++i) {
    EXPECT_EQ(Load8(0xA20 + i), 0x20 + i);
    EXPECT_EQ(Load8(0xA28 + i), 0x80 + i);
  }
  for (std::uint32_t offset = 0xA30; offset < 0xA38; offset += 2) {
    EXPECT_EQ(chip_.registers.Load(offset, 2), 0x1000 + offset);
  }
  EXPECT_EQ(Load8(0xA38), 0x77);
  EXPECT_EQ(Load8(0xA39), 0xA1);
}

TEST_F(PxtEngine, BitsWithoutAMeaningAreNotKeptInTheEntry) {
  Store8(0xA38, 0xFF);
  Store8(0xA39, 0xFF);
  Run(0x0D, 0x09);
  Store8(0xA39, 0x30);
  Run(0x06, 0x02);
  EXPECT_EQ(Load8(0xA38), 0x77);
  EXPECT_EQ(Load8(0xA39), 0xF1);
}

TEST_F(PxtEngine, IsFoundByItsNameForFaults) {
  ASSERT_TRUE(chip_.SetFault("pxt", {.kind = Fault::Kind::kBusy}));
  EXPECT_EQ(Load8(0xA3A), 0x00);
}

TEST_F(PxtEngine, ResetEmptiesTheTable) {
  chip_.pxt.Change(1).valid = true;
  chip_.Reset();
  EXPECT_FALSE(chip_.pxt.Entries()[1].valid);
}

}  // namespace
}  // namespace chip
