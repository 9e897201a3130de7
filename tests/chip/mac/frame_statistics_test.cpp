// What frames count, by raw loads and stores.
#include "support/frames.h"

namespace chip {
namespace {

class FrameStatisticsModel : public Frames {};

TEST_F(FrameStatisticsModel, ReceivedFramesAreCounted) {
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

TEST_F(FrameStatisticsModel, SentFramesAreCounted) {
  Transmit(1, 0x01, 60);
  chip_.frames.memory.Store(0x01000820, 1, 0x01);
  Transmit(1, 0x01, 100);
  const Counts wanted{{{kWan, 0}, 64 + 104}, {{kWan, 1}, 1}, {{kWan, 4}, 1}};
  EXPECT_EQ(Counted(), wanted);
}

}  // namespace
}  // namespace chip
