// The ports of the model, by raw loads and stores.
#include "support/frames.h"

namespace chip {
namespace {

class PortModel : public Frames {};

TEST_F(PortModel, APortThatIsDownReceivesNothing) {
  Store8(0x001, 0xF7);
  EXPECT_FALSE(chip_.frames.Receive(kLan, SomeFrame(60)));
  EXPECT_TRUE(chip_.frames.Receive(kDmz, SomeFrame(60)));
  EXPECT_EQ(Memory(0x01008009), 0x04);
  EXPECT_EQ(chip_.stat_counters.counters[kLan][8], 0U);
}

TEST_F(PortModel, FramesForAPortThatIsDownWaitInOrder) {
  Store8(0x000, 0x00);
  chip_.frames.memory.Store(0x01000820, 1, 0x11);
  chip_.frames.memory.Store(0x01001020, 1, 0x22);
  Transmit(1, 0x01, 60);
  Transmit(2, 0x01, 61);
  Transmit(1, 0x01, 62);
  Transmit(3, 0x02, 63);
  ASSERT_EQ(sent_.size(), 1U);
  EXPECT_EQ(sent_[0].port, kLan);
  EXPECT_EQ(Uses(1), 3U);
  EXPECT_EQ(Uses(2), 2U);
  EXPECT_EQ(Uses(3), 1U);

  Store8(0x000, 0x08);
  ASSERT_EQ(sent_.size(), 4U);
  EXPECT_EQ(Uses(1), 1U);
  EXPECT_EQ(sent_[1].frame.size(), 60U);
  EXPECT_EQ(sent_[1].frame[0], 0x11);
  EXPECT_EQ(sent_[2].frame.size(), 61U);
  EXPECT_EQ(sent_[2].frame[0], 0x22);
  EXPECT_EQ(sent_[3].frame.size(), 62U);
}

TEST_F(PortModel, APortThatIsDownKeeps256Frames) {
  Store8(0x000, 0x00);
  for (int i = 0; i < 256; ++i) Transmit(1, 0x01, 60);
  EXPECT_EQ(chip_.stat_counters.counters[kWan][2], 0U);
  Transmit(1, 0x01, 60);
  EXPECT_EQ(chip_.stat_counters.counters[kWan][2], 1U);
  Store8(0x000, 0x08);
  EXPECT_EQ(sent_.size(), 256U);
}

TEST_F(PortModel, InternalLoopbackReturnsAPortsOwnFramesAndShutsTheWireOut) {
  Store8(0x003, 0x04);
  EXPECT_FALSE(chip_.frames.Receive(kLan, SomeFrame(60)));
  EXPECT_EQ(Events(), 0U);
  Transmit(1, 0x02, 60);
  EXPECT_TRUE(sent_.empty());
  EXPECT_EQ(Events(), 0x0010U);
  EXPECT_EQ(Memory(0x01008009), 0x02);
  Transmit(1, 0x01, 60);
  EXPECT_EQ(sent_.size(), 1U);
}

TEST_F(PortModel, ExternalLoopbackChangesNothing) {
  Store8(0x003, 0x08);
  EXPECT_TRUE(chip_.frames.Receive(kLan, SomeFrame(60)));
  Transmit(1, 0x02, 60);
  EXPECT_EQ(sent_.size(), 1U);
}

}  // namespace
}  // namespace chip
