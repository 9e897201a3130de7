// The frame engine of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "chip/router_chip.h"

namespace chip {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A frame of that length to a unicast address, with bytes that count up.
Bytes SomeFrame(std::size_t length) {
  Bytes frame(length);
  for (std::size_t i = 0; i < length; ++i) frame[i] = static_cast<std::uint8_t>(2 * i);
  return frame;
}

class Frames : public testing::Test {
 protected:
  static constexpr unsigned kWan = 0;
  static constexpr unsigned kLan = 1;
  static constexpr unsigned kDmz = 2;

  struct Sent {
    unsigned port;
    Bytes frame;
  };

  /// Counts by port and counter.
  using Counts = std::map<std::pair<unsigned, unsigned>, std::uint32_t>;

  void SetUp() override {
    for (std::uint32_t port = 0; port < 3; ++port) Store8(port, 0x08);
    chip_.frames.on_transmit = [this](unsigned port, std::span<const std::uint8_t> frame) {
      sent_.push_back({port, Bytes(frame.begin(), frame.end())});
    };
  }
  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }
  std::uint32_t Events() { return chip_.registers.Load(0x210, 2); }
  std::uint16_t Memory(std::uint32_t address, unsigned width = 1) {
    return chip_.frames.memory.Load(address, width);
  }

  /// Pulses the receive acknowledge.
  void TakeOffered() {
    Store8(0x427, 0x02);
    Store8(0x427, 0x00);
  }

  void Release(std::uint8_t handle) {
    Store8(0x428, handle);
    Store8(0x427, 0x01);
    Store8(0x427, 0x00);
    (void)Load8(0x427);
    EXPECT_EQ(Load8(0x427), 0x04);
  }

  /// Sends `length` bytes from a buffer, to the port of that code.
  void Transmit(std::uint8_t handle, std::uint8_t code, std::uint16_t length) {
    chip_.frames.memory.Store(0x01000000 + 0x800U * handle, 2, length);
    Store8(0x42A, code);
    Store8(0x429, handle);
    Store8(0x42B, 0x01);
    Store8(0x42B, 0x00);
    (void)Load8(0x42B);
    EXPECT_EQ(Load8(0x42B), 0x02);
  }

  /// The uses that a status query counts.
  unsigned Uses(std::uint8_t handle) {
    Store8(0x431, handle);
    Store8(0x430, 0x01);
    Store8(0x430, 0x00);
    (void)Load8(0x430);
    const std::uint8_t answer = Load8(0x430);
    EXPECT_EQ(answer & 0xC3, 0x02);
    return answer >> 2;
  }

  /// What the counters have come to, without those at 0.
  Counts Counted() const {
    Counts counts;
    for (unsigned port = 0; port < kMacPorts; ++port) {
      for (unsigned counter = 0; counter < StatCounters::kCounters; ++counter) {
        const std::uint32_t count = chip_.stat_counters.counters[port][counter];
        if (count != 0) counts[{port, counter}] = count;
      }
    }
    return counts;
  }

  void ExpectComplaint(const char* text) {
    EXPECT_EQ(chip_.registers.Complaints().size(), 1U);
    EXPECT_EQ(chip_.registers.Complaints().count(text), 1U) << text;
    chip_.registers.ForgetComplaints();
  }

  RouterChip chip_;
  std::vector<Sent> sent_;
};

TEST_F(Frames, AtPowerOnEveryEngineIsDoneAndNoFrameWaits) {
  EXPECT_EQ(Load8(0x426), 0);
  EXPECT_EQ(Load8(0x427), 0x04);
  EXPECT_EQ(Load8(0x42B), 0x02);
  EXPECT_EQ(Load8(0x430), 0x02);
  EXPECT_EQ(Events(), 0U);
  EXPECT_EQ(chip_.frames.FreeBuffers(), 240U);
}

TEST_F(Frames, AReceivedFrameIsOfferedInItsBuffer) {
  EXPECT_TRUE(chip_.frames.Receive(kDmz, SomeFrame(0x5EA)));
  EXPECT_EQ(Events(), 0x0010U);
  EXPECT_EQ(Load8(0x426), 0x10);
  EXPECT_EQ(Memory(0x01008000, 2), 0x5EA);
  EXPECT_EQ(Memory(0x01008009), 0x04);
  EXPECT_EQ(Memory(0x0100800A), 0x04);
  EXPECT_EQ(Memory(0x01008020), 0x00);
  EXPECT_EQ(Memory(0x01008021), 0x02);
  EXPECT_EQ(Memory(0x01008020 + 0x5E9), 0xD2);
  EXPECT_EQ(Memory(0x01008020 + 0x5EA), 0x00);
}

TEST_F(Frames, TheEventStaysWhileAFrameIsOffered) {
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

TEST_F(Frames, OnlyTheRiseOfTheAcknowledgeBitCounts) {
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

TEST_F(Frames, AReleasedBufferJoinsTheEndOfThePool) {
  EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
  TakeOffered();
  EXPECT_EQ(chip_.frames.FreeBuffers(), 239U);
  Release(0x10);
  EXPECT_EQ(chip_.frames.FreeBuffers(), 240U);
  for (unsigned handle = 0x11; handle <= 0xFF; ++handle) {
    EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
    EXPECT_EQ(Load8(0x426), handle);
    TakeOffered();
  }
  EXPECT_TRUE(chip_.frames.Receive(kWan, SomeFrame(60)));
  EXPECT_EQ(Load8(0x426), 0x10);
}

TEST_F(Frames, AnEmptyPoolDropsAndCounts) {
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

TEST_F(Frames, APortThatIsDownReceivesNothing) {
  Store8(0x001, 0xF7);
  EXPECT_FALSE(chip_.frames.Receive(kLan, SomeFrame(60)));
  EXPECT_TRUE(chip_.frames.Receive(kDmz, SomeFrame(60)));
  EXPECT_EQ(Memory(0x01008009), 0x04);
  EXPECT_EQ(chip_.stat_counters.counters[kLan][8], 0U);
}

TEST_F(Frames, TheReasonFollowsFromTheDestination) {
  const Bytes cpu_mac{0x00, 0xA0, 0xB1, 0xC2, 0xD3, 0xE4};
  const Bytes wan_mac{0x00, 0xA0, 0xB1, 0xC2, 0xD3, 0xE5};
  for (std::uint32_t i = 0; i < 6; ++i) {
    Store8(0x400 + i, cpu_mac[i]);
    Store8(0x420 + i, wan_mac[i]);
  }
  struct Row {
    unsigned port;
    Bytes destination;
    unsigned reason;
  };
  const Row rows[] = {
      {kLan, cpu_mac, 1},
      {kWan, cpu_mac, 1},
      {kWan, wan_mac, 1},
      {kLan, wan_mac, 4},
      {kLan, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 2},
      {kLan, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}, 3},
      {kLan, {0x01, 0x00, 0x5E, 0x00, 0x00, 0x01}, 3},
      {kLan, {0x02, 0x00, 0x5E, 0x00, 0x00, 0x01}, 4},
  };
  for (const Row& row : rows) {
    Bytes frame = row.destination;
    frame.resize(60);
    ASSERT_TRUE(chip_.frames.Receive(row.port, frame));
    const std::uint32_t start = 0x01000000 + 0x800U * Load8(0x426);
    EXPECT_EQ(Memory(start + 10), row.reason);
    EXPECT_EQ(Memory(start + 9), 1 << row.port);
    TakeOffered();
  }
}

TEST_F(Frames, ATransmissionLeavesAtTheSecondLoadAfterTheStart) {
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

TEST_F(Frames, EveryBufferCanBeSentHandle0AndPooledOnesIncluded) {
  Transmit(0x00, 0x01, 60);
  Transmit(0xFF, 0x04, 1524);
  ASSERT_EQ(sent_.size(), 2U);
  EXPECT_EQ(sent_[0].port, kWan);
  EXPECT_EQ(sent_[0].frame.size(), 60U);
  EXPECT_EQ(sent_[1].port, kDmz);
  EXPECT_EQ(sent_[1].frame.size(), 1524U);
  EXPECT_EQ(chip_.frames.FreeBuffers(), 240U);
}

TEST_F(Frames, FramesForAPortThatIsDownWaitInOrder) {
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

TEST_F(Frames, APortThatIsDownKeeps256Frames) {
  Store8(0x000, 0x00);
  for (int i = 0; i < 256; ++i) Transmit(1, 0x01, 60);
  EXPECT_EQ(chip_.stat_counters.counters[kWan][2], 0U);
  Transmit(1, 0x01, 60);
  EXPECT_EQ(chip_.stat_counters.counters[kWan][2], 1U);
  Store8(0x000, 0x08);
  EXPECT_EQ(sent_.size(), 256U);
}

TEST_F(Frames, StatusCountsHoldsAndTransmissions) {
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

TEST_F(Frames, ABufferReturnsToThePoolWhenItsLastTransmissionIsOver) {
  EXPECT_TRUE(chip_.frames.Receive(kLan, SomeFrame(60)));
  TakeOffered();
  Store8(0x000, 0x00);
  Transmit(16, 0x01, 60);
  Release(16);
  EXPECT_EQ(chip_.frames.FreeBuffers(), 239U);
  EXPECT_EQ(Uses(16), 1U);
  Store8(0x000, 0x08);
  EXPECT_EQ(chip_.frames.FreeBuffers(), 240U);
  EXPECT_EQ(Uses(16), 0U);
}

TEST_F(Frames, FramesForTheCpuComeBackAsReceivedFromIt) {
  Transmit(1, 0x08, 60);
  EXPECT_TRUE(sent_.empty());
  EXPECT_EQ(Events(), 0x0010U);
  EXPECT_EQ(Memory(0x01008000, 2), 60);
  EXPECT_EQ(Memory(0x01008009), 0x08);
  EXPECT_TRUE(Counted().empty());
}

TEST_F(Frames, ABufferOfThePoolMayComeBackIntoItself) {
  chip_.frames.memory.Store(0x01008020, 1, 0x5A);
  Transmit(16, 0x08, 60);
  EXPECT_EQ(Load8(0x426), 16);
  EXPECT_EQ(Memory(0x01008000, 2), 60);
  EXPECT_EQ(Memory(0x01008020), 0x5A);
}

TEST_F(Frames, InternalLoopbackReturnsAPortsOwnFramesAndShutsTheWireOut) {
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

TEST_F(Frames, ExternalLoopbackChangesNothing) {
  Store8(0x003, 0x08);
  EXPECT_TRUE(chip_.frames.Receive(kLan, SomeFrame(60)));
  Transmit(1, 0x02, 60);
  EXPECT_EQ(sent_.size(), 1U);
}

TEST_F(Frames, LengthsThatNoFrameHasAreNotSent) {
  Transmit(1, 0x01, 0);
  Transmit(1, 0x01, 1525);
  Transmit(1, 0x01, 0xFFFF);
  EXPECT_TRUE(sent_.empty());
  EXPECT_EQ(chip_.stat_counters.counters[kWan][2], 3U);
}

TEST_F(Frames, MisuseIsComplainedAbout) {
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

TEST_F(Frames, FaultsHangOrSlowEachEngine) {
  chip_.FindEngine("tx")->SetFault({.kind = Fault::Kind::kHang});
  chip_.frames.memory.Store(0x01000800, 2, 60);
  Store8(0x42A, 0x01);
  Store8(0x429, 0x01);
  Store8(0x42B, 0x01);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(Load8(0x42B), 0x01);
  EXPECT_TRUE(sent_.empty());
  chip_.FindEngine("tx")->SetFault({});
  (void)Load8(0x42B);
  EXPECT_EQ(Load8(0x42B), 0x03);
  EXPECT_EQ(sent_.size(), 1U);

  chip_.FindEngine("status")->SetFault({.kind = Fault::Kind::kSlow, .loads = 4});
  Store8(0x431, 0x01);
  Store8(0x430, 0x01);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Load8(0x430), 0x01);
  EXPECT_EQ(Load8(0x430), 0x07);

  chip_.FindEngine("release")->SetFault({.kind = Fault::Kind::kHang});
  Store8(0x427, 0x01);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(Load8(0x427), 0x01);
}

TEST_F(Frames, AFailedStatusLeavesTheCount) {
  chip_.FindEngine("status")->SetFault({.kind = Fault::Kind::kFail});
  Store8(0x431, 0x01);
  Store8(0x430, 0x01);
  (void)Load8(0x430);
  EXPECT_EQ(Load8(0x430), 0x03);
}

TEST_F(Frames, ReceivedFramesAreCounted) {
  for (const unsigned length :
       {59U, 60U, 61U, 123U, 124U, 251U, 252U, 507U, 508U, 1019U, 1020U, 1524U}) {
    EXPECT_TRUE(chip_.frames.Receive(kLan, SomeFrame(length)));
  }
  EXPECT_FALSE(chip_.frames.Receive(kLan, SomeFrame(1525)));
  Bytes frame = SomeFrame(60);
  frame[0] = 0x01;
  EXPECT_TRUE(chip_.frames.Receive(kLan, frame));
  EXPECT_TRUE(chip_.frames.Receive(kLan, Bytes(60, 0xFF)));

  // On the wire each frame is four bytes longer.
  constexpr std::uint32_t kGood =
      63 + 64 + 65 + 127 + 128 + 255 + 256 + 511 + 512 + 1023 + 1024 + 1528 + 64 + 64;
  const Counts wanted{{{kLan, 5}, kGood}, {{kLan, 6}, 14}, {{kLan, 7}, kGood + 1529},
                      {{kLan, 8}, 15},    {{kLan, 10}, 1}, {{kLan, 11}, 1},
                      {{kLan, 12}, 3},    {{kLan, 14}, 2}, {{kLan, 15}, 1},
                      {{kLan, 16}, 2},    {{kLan, 17}, 2}, {{kLan, 18}, 2},
                      {{kLan, 19}, 2},    {{kLan, 22}, 1}};
  EXPECT_EQ(Counted(), wanted);
}

TEST_F(Frames, SentFramesAreCounted) {
  Transmit(1, 0x01, 60);
  chip_.frames.memory.Store(0x01000820, 1, 0x01);
  Transmit(1, 0x01, 100);
  const Counts wanted{{{kWan, 0}, 64 + 104}, {{kWan, 1}, 1}, {{kWan, 4}, 1}};
  EXPECT_EQ(Counted(), wanted);
}

TEST_F(Frames, ResetEmptiesQueuesAndFillsThePool) {
  EXPECT_TRUE(chip_.frames.Receive(kLan, SomeFrame(60)));
  Store8(0x000, 0x00);
  Transmit(1, 0x01, 60);
  chip_.Reset();
  EXPECT_EQ(chip_.frames.FreeBuffers(), 240U);
  EXPECT_EQ(Events(), 0U);
  EXPECT_EQ(Load8(0x426), 0);
  EXPECT_EQ(Load8(0x427), 0x04);
  EXPECT_EQ(Uses(1), 1U);
  Store8(0x000, 0x08);
  EXPECT_TRUE(sent_.empty());
}

}  // namespace
}  // namespace chip
