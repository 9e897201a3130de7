// What the CPU is offered, acknowledges and releases, by raw loads and stores.
#include "support/frames.h"

namespace chip {
namespace {

class CpuPortModel : public Frames {};

TEST_F(CpuPortModel, AReceivedFrameIsOfferedInItsBuffer) {
  EXPECT_TRUE(chip_.frames.Receive(kDmz, SomeFrame(0x5EA)));
  EXPECT_EQ(Events(), 0x0010U);
  EXPECT_EQ(Load8(0x426), 0x10);
  EXPECT_EQ(Memory(0x01008000), 0xEA);
  EXPECT_EQ(Memory(0x01008001), 0x05);
  EXPECT_EQ(Memory(0x01008009), 0x04);
  EXPECT_EQ(Memory(0x0100800A), 0x04);
  EXPECT_EQ(Memory(0x01008020), 0x00);
  EXPECT_EQ(Memory(0x01008021), 0x02);
  EXPECT_EQ(Memory(0x01008020 + 0x5E9), 0xD2);
  EXPECT_EQ(Memory(0x01008020 + 0x5EA), 0x00);
}

TEST_F(CpuPortModel, TheEventStaysWhileAFrameIsOffered) {
  EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
  EXPECT_TRUE(chip_.frames.Receive(kLan, SomeFrame(60)));
  EXPECT_EQ(Load8(0x426), 0x10);
  TakeOffered();
  EXPECT_EQ(Load8(0x426), 0x11);
  chip_.registers.Store(0x210, 2, 0x0010);
  EXPECT_EQ(Events(), 0x0010U);
  TakeOffered();
  EXPECT_EQ(Events(), 0x0010U);
  chip_.registers.Store(0x210, 2, 0x0010);
  EXPECT_EQ(Events(), 0U);
}

TEST_F(CpuPortModel, OnlyTheRiseOfTheAcknowledgeBitCounts) {
  EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
  EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
  EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
  Store8(0x427, 0x02);
  Store8(0x427, 0x06);
  EXPECT_EQ(Load8(0x426), 0x11);
  Store8(0x427, 0x04);
  Store8(0x427, 0x00);
  EXPECT_EQ(Load8(0x426), 0x11);
}

TEST_F(CpuPortModel, AReleasedBufferJoinsTheEndOfThePool) {
  EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
  TakeOffered();
  EXPECT_EQ(chip_.frames.pool.Free(), 239U);
  Release(0x10);
  EXPECT_EQ(chip_.frames.pool.Free(), 240U);
  for (unsigned handle = 0x11; handle <= 0xFF; ++handle) {
    EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
    EXPECT_EQ(Load8(0x426), handle);
    TakeOffered();
  }
  EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
  EXPECT_EQ(Load8(0x426), 0x10);
}

TEST_F(CpuPortModel, AnEmptyPoolDropsAndCounts) {
  for (int i = 0; i < 240; ++i) EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
  EXPECT_FALSE(chip_.frames.Receive(kLan, SomeFrame(60)));
  EXPECT_EQ(chip_.stat_counters.counters[kLan][26], 1U);
  EXPECT_EQ(chip_.stat_counters.counters[kWan][26], 0U);
  TakeOffered();
  EXPECT_FALSE(chip_.frames.Receive(kLan, SomeFrame(60)));
  Release(0x10);
  EXPECT_TRUE(chip_.frames.Receive(kLan, SomeFrame(60)));
  EXPECT_EQ(chip_.stat_counters.counters[kLan][26], 2U);
}

TEST_F(CpuPortModel, StatusCountsHoldsAndTransmissions) {
  EXPECT_EQ(Uses(0), 0U);
  EXPECT_EQ(Uses(1), 1U);
  EXPECT_EQ(Uses(15), 1U);
  EXPECT_EQ(Uses(16), 0U);
  EXPECT_TRUE(chip_.frames.Receive(kLan, SomeFrame(60)));
  EXPECT_EQ(Uses(16), 1U);
  Store8(0x000, 0x00);
  Transmit(16, 0x01, 60);
  EXPECT_EQ(Uses(16), 2U);
  for (int i = 0; i < 20; ++i) Transmit(15, 0x01, 60);
  EXPECT_EQ(Uses(15), 15U);
}

TEST_F(CpuPortModel, AFailedStatusLeavesTheCount) {
  chip_.frames.cpu.status.SetFault({.kind = Fault::Kind::kFail});
  Store8(0x431, 0x01);
  Store8(0x430, 0x01);
  (void)Load8(0x430);
  EXPECT_EQ(Load8(0x430), 0x03);
}

}  // namespace
}  // namespace chip
