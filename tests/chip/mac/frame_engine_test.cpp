// The path of frames through the model, by raw loads and stores.
#include "support/frames.h"

namespace chip {
namespace {

class FrameEngineModel : public Frames {};

TEST_F(FrameEngineModel, AtPowerOnEveryEngineIsDoneAndNoFrameWaits) {
  EXPECT_EQ(Load8(0x426), 0);
  EXPECT_EQ(Load8(0x427), 0x04);
  EXPECT_EQ(Load8(0x42B), 0x02);
  EXPECT_EQ(Load8(0x430), 0x02);
  EXPECT_EQ(Events(), 0U);
  EXPECT_EQ(chip_.frames.pool.Free(), 240U);
}

TEST_F(FrameEngineModel, ATransmissionLeavesAtTheSecondLoadAfterTheStart) {
  chip_.frames.memory.Store(0x01002800, 2, 3);
  chip_.frames.memory.Store(0x01002820, 1, 0x11);
  chip_.frames.memory.Store(0x01002821, 1, 0x22);
  chip_.frames.memory.Store(0x01002822, 1, 0x33);
  Store8(0x42A, 0x72);
  Store8(0x429, 0x05);
  Store8(0x42B, 0x03);  // the start clears the done bit anyway
  EXPECT_EQ(Load8(0x42B), 0x01);
  EXPECT_TRUE(sent_.empty());
  EXPECT_EQ(Load8(0x42B), 0x03);
  ASSERT_EQ(sent_.size(), 1U);
  EXPECT_EQ(sent_[0].port, kLan);
  EXPECT_EQ(sent_[0].frame, (Bytes{0x11, 0x22, 0x33}));
  Store8(0x42B, 0x00);
  EXPECT_EQ(Load8(0x42B), 0x02);
  EXPECT_EQ(sent_.size(), 1U);
}

TEST_F(FrameEngineModel, TheLengthToSendIsLittleEndian) {
  chip_.frames.memory.Store(0x01000800, 1, 0x2C);
  chip_.frames.memory.Store(0x01000801, 1, 0x01);
  Store8(0x42A, 0x02);
  Store8(0x429, 0x01);
  Store8(0x42B, 0x01);
  (void)Load8(0x42B);
  (void)Load8(0x42B);
  ASSERT_EQ(sent_.size(), 1U);
  EXPECT_EQ(sent_[0].frame.size(), 0x12CU);
}

TEST_F(FrameEngineModel, EveryBufferCanBeSentHandle0AndPooledOnesIncluded) {
  Transmit(0x00, 0x01, 60);
  Transmit(0xFF, 0x04, 1524);
  ASSERT_EQ(sent_.size(), 2U);
  EXPECT_EQ(sent_[0].port, kWan);
  EXPECT_EQ(sent_[0].frame.size(), 60U);
  EXPECT_EQ(sent_[1].port, kDmz);
  EXPECT_EQ(sent_[1].frame.size(), 1524U);
  EXPECT_EQ(chip_.frames.pool.Free(), 240U);
}

TEST_F(FrameEngineModel, ABufferReturnsToThePoolWhenItsLastTransmissionIsOver) {
  EXPECT_TRUE(chip_.frames.Receive(kLan, SomeFrame(60)));
  TakeOffered();
  Store8(0x000, 0x00);
  Transmit(16, 0x01, 60);
  Release(16);
  EXPECT_EQ(chip_.frames.pool.Free(), 239U);
  EXPECT_EQ(Uses(16), 1U);
  Store8(0x000, 0x08);
  EXPECT_EQ(chip_.frames.pool.Free(), 240U);
  EXPECT_EQ(Uses(16), 0U);
}

TEST_F(FrameEngineModel, FramesForTheCpuComeBackAsReceivedFromIt) {
  Transmit(1, 0x08, 60);
  EXPECT_TRUE(sent_.empty());
  EXPECT_EQ(Events(), 0x0010U);
  EXPECT_EQ(Memory(0x01008000, 2), 60);
  EXPECT_EQ(Memory(0x01008009), 0x08);
  EXPECT_TRUE(Counted().empty());
}

TEST_F(FrameEngineModel, ABufferOfThePoolMayComeBackIntoItself) {
  chip_.frames.memory.Store(0x01008020, 1, 0x5A);
  Transmit(16, 0x08, 60);
  EXPECT_EQ(Load8(0x426), 16);
  EXPECT_EQ(Memory(0x01008000, 2), 60);
  EXPECT_EQ(Memory(0x01008020), 0x5A);
}

TEST_F(FrameEngineModel, LengthsThatNoFrameHasAreNotSent) {
  Transmit(1, 0x01, 0);
  Transmit(1, 0x01, 1525);
  Transmit(1, 0x01, 0xFFFF);
  EXPECT_TRUE(sent_.empty());
  EXPECT_EQ(chip_.stat_counters.counters[kWan][2], 3U);
}

TEST_F(FrameEngineModel, MisuseIsComplainedAbout) {
  TakeOffered();
  ExpectComplaint("receive acknowledged with no frame waiting");
  Release(0x20);
  ExpectComplaint("release of a buffer that is not handed out");
  Release(0x01);
  ExpectComplaint("release of a buffer that is not handed out");
  EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
  Release(0x10);
  ExpectComplaint("release of a frame that is still offered");
  EXPECT_EQ(Uses(0x10), 1U);
  Transmit(1, 0x03, 60);
  ExpectComplaint("transmission to no single port");
  EXPECT_TRUE(sent_.empty());
  Store8(0x426, 0x20);
  ExpectComplaint("store to read-only FRAME_RX_HANDLE at 0426");
  EXPECT_EQ(Load8(0x426), 0x10);
}

TEST_F(FrameEngineModel, FaultsHangOrSlowEachEngine) {
  chip_.frames.transmit.SetFault({.kind = Fault::Kind::kHang});
  chip_.frames.memory.Store(0x01000800, 2, 60);
  Store8(0x42A, 0x01);
  Store8(0x429, 0x01);
  Store8(0x42B, 0x01);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(Load8(0x42B), 0x01);
  EXPECT_TRUE(sent_.empty());
  chip_.frames.transmit.SetFault({});
  (void)Load8(0x42B);
  EXPECT_EQ(Load8(0x42B), 0x03);
  EXPECT_EQ(sent_.size(), 1U);

  chip_.frames.cpu.status.SetFault({.kind = Fault::Kind::kSlow, .loads = 4});
  Store8(0x431, 0x01);
  Store8(0x430, 0x01);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Load8(0x430), 0x01);
  EXPECT_EQ(Load8(0x430), 0x07);

  chip_.frames.cpu.release.SetFault({.kind = Fault::Kind::kHang});
  Store8(0x427, 0x01);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(Load8(0x427), 0x01);
}

TEST_F(FrameEngineModel, ResetEmptiesQueuesAndFillsThePool) {
  EXPECT_TRUE(chip_.frames.Receive(kLan, SomeFrame(60)));
  Store8(0x000, 0x00);
  Transmit(1, 0x01, 60);
  chip_.Reset();
  EXPECT_EQ(chip_.frames.pool.Free(), 240U);
  EXPECT_EQ(Events(), 0U);
  EXPECT_EQ(Load8(0x426), 0);
  EXPECT_EQ(Load8(0x427), 0x04);
  EXPECT_EQ(Uses(1), 1U);
  Store8(0x000, 0x08);
  EXPECT_TRUE(sent_.empty());
}

}  // namespace
}  // namespace chip
