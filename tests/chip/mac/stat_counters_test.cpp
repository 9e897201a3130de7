// The statistic counters of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class StatCounterModel : public testing::Test {
 protected:
  static constexpr auto kWan = monitor::PortId::kWan;
  static constexpr auto kLan = monitor::PortId::kLan;
  static constexpr auto kDmz = monitor::PortId::kDmz;

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }
  void Store32(std::uint32_t offset, std::uint32_t value) {
    chip_.registers.Store(offset, 4, value);
  }
  std::uint32_t Load32(std::uint32_t offset) { return chip_.registers.Load(offset, 4); }

  /// A step: start, end of the pulse, wait.
  void Run(std::uint8_t start) {
    Store8(0x85C, start);
    Store8(0x85C, start & 0xFB);
    (void)Load8(0x85C);
    ASSERT_EQ(Load8(0x85C) & 0x03, 0x03);
  }
  void ReadStep(std::uint8_t selector) {
    Store8(0x85D, selector);
    Run(0x06);
  }
  void WriteStep() { Run(0x0D); }

  /// Gives counter i of a port the value i + 1.
  void Fill(monitor::PortId port) {
    for (unsigned i = 0; i < 28; ++i) counters()[port][i] = i + 1;
  }

  decltype(StatCounters::counters)& counters() { return chip_.stat_counters.counters; }
  decltype(StatCounters::overflow)& overflow() { return chip_.stat_counters.overflow; }

  RouterChip chip_;
};

TEST_F(StatCounterModel, IsReadyAndEmptyAtPowerOn) {
  EXPECT_EQ(Load8(0x85C), 0x03);
  for (const unsigned port : {0U, 8U, 16U}) {
    ReadStep(static_cast<std::uint8_t>(port));
    EXPECT_EQ(Load32(0x858), 0U);
    EXPECT_EQ(Load32(0x850), 0U);
  }
}

TEST_F(StatCounterModel, AReadPacksTheGroupIntoItsTwoWords) {
  Fill(kLan);
  constexpr std::uint32_t kWords[8][2] = {
      {0x00000001, 0x03000002}, {0x00050004, 0x00000006}, {0x00000007, 0x00000008},
      {0x0A000009, 0x000C000B}, {0x0E00000D, 0x1000000F}, {0x00120011, 0x00140013},
      {0x17160015, 0x00190018}, {0x001B001A, 0x1C000000},
  };
  for (std::uint8_t group = 0; group < 8; ++group) {
    ReadStep(static_cast<std::uint8_t>(0x08 | group));
    EXPECT_EQ(Load32(0x858), kWords[group][0]) << unsigned{group};
    EXPECT_EQ(Load32(0x854), kWords[group][1]) << unsigned{group};
  }
}

TEST_F(StatCounterModel, PortsAreApart) {
  counters()[kWan][0] = 1;
  counters()[kLan][0] = 2;
  counters()[kDmz][0] = 3;
  overflow() = {4, 5, 6};
  ReadStep(0x00);
  EXPECT_EQ(Load32(0x858), 1U);
  EXPECT_EQ(Load32(0x850), 4U);
  ReadStep(0x08);
  EXPECT_EQ(Load32(0x858), 2U);
  EXPECT_EQ(Load32(0x850), 5U);
  ReadStep(0x10);
  EXPECT_EQ(Load32(0x858), 3U);
  EXPECT_EQ(Load32(0x850), 6U);
}

TEST_F(StatCounterModel, AWriteGivesTheGroupTheStoredWordsAndNothingElse) {
  Fill(kWan);
  Fill(kDmz);
  overflow() = {0xFF, 0xFF, 0xFF};
  Store8(0x85D, 0x13);
  Store32(0x854, 0x55667788);
  Store32(0x858, 0x11223344);
  WriteStep();
  EXPECT_EQ(counters()[kDmz][8], 0x223344U);
  EXPECT_EQ(counters()[kDmz][9], 0x11U);
  EXPECT_EQ(counters()[kDmz][10], 0x7788U);
  EXPECT_EQ(counters()[kDmz][11], 0x5566U);
  EXPECT_EQ(counters()[kDmz][7], 8U);
  EXPECT_EQ(counters()[kDmz][12], 13U);
  EXPECT_EQ(counters()[kWan][8], 9U);
  EXPECT_EQ(overflow(), (std::array<std::uint32_t, 3>{0xFF, 0xFF, 0xFF}));
}

TEST_F(StatCounterModel, AWordThatWasNotStoredIsNotWritten) {
  Fill(kWan);
  Store8(0x85D, 0x00);
  Store32(0x854, 0);
  WriteStep();
  EXPECT_EQ(counters()[kWan][0], 1U);
  EXPECT_EQ(counters()[kWan][1], 0U);
  EXPECT_EQ(counters()[kWan][2], 0U);
}

TEST_F(StatCounterModel, AnOverflowClearTakesAwayTheOnesAndWritesNoCounter) {
  Fill(kLan);
  overflow() = {0x0FFFFFFF, 0x0FFFFFFF, 0};
  ReadStep(0x0B);  // leaves another group in the data words
  Store8(0x85D, 0x08);
  Store32(0x850, 0x04000001);
  WriteStep();
  EXPECT_EQ(overflow(), (std::array<std::uint32_t, 3>{0x0FFFFFFF, 0x0BFFFFFE, 0}));
  EXPECT_EQ(counters()[kLan][0], 1U);
  ReadStep(0x08);
  EXPECT_EQ(Load32(0x850), 0x0BFFFFFEU);
}

TEST_F(StatCounterModel, CountersWrapAtTheirWidthAndRaiseTheirOverflowBit) {
  auto& sc = chip_.stat_counters;
  sc.Count(kWan, 0, 0xFFFFFFFF);
  sc.Count(kWan, 1, 0x00FFFFFF);
  sc.Count(kWan, 26, 0xFFFF);
  sc.Count(kWan, 27, 0xFF);
  EXPECT_EQ(overflow()[kWan], 0U);
  sc.Count(kWan, 0, 1);
  EXPECT_EQ(counters()[kWan][0], 0U);
  EXPECT_EQ(overflow()[kWan], 0x00000001U);
  sc.Count(kWan, 1, 2);
  EXPECT_EQ(counters()[kWan][1], 1U);
  EXPECT_EQ(overflow()[kWan], 0x00000003U);
  sc.Count(kWan, 26, 3);
  EXPECT_EQ(counters()[kWan][26], 2U);
  EXPECT_EQ(overflow()[kWan], 0x04000003U);
  sc.Count(kWan, 27, 0x101);
  EXPECT_EQ(counters()[kWan][27], 0U);
  EXPECT_EQ(overflow()[kWan], 0x0C000003U);
  sc.Count(kWan, 27, 1);
  EXPECT_EQ(counters()[kWan][27], 1U);
  EXPECT_EQ(overflow()[kWan], 0x0C000003U);
  EXPECT_EQ(overflow()[kLan], 0U);
}

TEST_F(StatCounterModel, ANonexistentPortIsComplainedAbout) {
  ReadStep(0x18);
  EXPECT_EQ(chip_.registers.Complaints().count("sc step on a port that is not there"), 1U);
  chip_.registers.ForgetComplaints();
}

TEST_F(StatCounterModel, ItsEngineIsNamedSc) {
  ASSERT_TRUE(chip_.SetFault("sc", {.kind = Fault::Kind::kBusy}));
  EXPECT_EQ(Load8(0x85C), 0x00);
  EXPECT_FALSE(chip_.SetFault("unknown", {}));
}

TEST_F(StatCounterModel, AFailedStepForgetsWhatWasStored) {
  chip_.stat_counters.engine.SetFault({.kind = Fault::Kind::kFail});
  Store32(0x858, 0x12345678);
  WriteStep();
  chip_.stat_counters.engine.SetFault({});
  WriteStep();
  EXPECT_EQ(counters()[kWan][0], 0U);
}

TEST_F(StatCounterModel, ResetClearsCountersAndOverflow) {
  Fill(kDmz);
  overflow()[kDmz] = 1;
  Store32(0x854, 0x12345678);
  chip_.Reset();
  EXPECT_EQ(counters()[kDmz][27], 0U);
  EXPECT_EQ(overflow()[kDmz], 0U);
  EXPECT_EQ(Load8(0x85C), 0x03);
  EXPECT_EQ(Load32(0x854), 0U);
}

}  // namespace
}  // namespace chip
