#include "mac/packet_service.h"

#include <gtest/gtest.h>

#include <string>

#include "mac/transmit_buffers.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

class PacketServiceStep : public testing::Test {
 protected:
  void SetUp() override {
    ReceiveMode = 0;
    ArpAutoReply = 0;
    (void)TakeOutput();
  }
  void TearDown() override {
    ReceiveMode = 0;
    ArpAutoReply = 0;
  }
};

/// A frame of three bytes, from LAN, taken from buffer 10 with the base at 0200.
constexpr char kTake[] = R"(
  r16  010c 0200
  r16  0210 0010
  r16  0210 0010
  map  0200
  r8   0426 10
  mr16 02008000 0003
  mr8  02008009 02
  mr8  0200800a 04
  lock
  r8   0427 04
  w8   0427 06
  r8   0427 06
  w8   0427 04
  unlock
)";

/// It is released and acknowledged.
constexpr char kGiveBack[] = R"(
  r16  010c 0200
  lock
  w8   0428 10
  w8   0427 01
  r8   0427 01
  w8   0427 00
  unlock
  r8   0427 04
  lock
  w16  0210 0010
  unlock
)";

constexpr char kDumpLoads[] = R"(
  mr8  02008020 11
  mr8  02008021 22
  mr8  02008022 33
)";

/// What BuildArpReply looks at before it gives up.
constexpr char kNoArpLoads[] = "mr8 0200802c 08\n mr8 0200802d 00\n";

TEST_F(PacketServiceStep, DoesNothingUnlessAskedFor) {
  ScriptedBus bus("");
  EXPECT_FALSE(PacketServiceOn());
  EXPECT_FALSE(PacketService());
  EXPECT_EQ(TakeOutput(), "");
}

TEST_F(PacketServiceStep, FindsNoFrameWaiting) {
  ScriptedBus bus("r16 010c 0200\n r16 0210 ffff\n r16 0210 ffef");
  ReceiveMode = 1;
  EXPECT_TRUE(PacketServiceOn());
  EXPECT_FALSE(PacketService());
  EXPECT_EQ(TakeOutput(), "");
}

TEST_F(PacketServiceStep, LeavesTheFrameWhenTheMemoryCannotBeReached) {
  ScriptedBus bus("r16 010c 0200\n r16 0210 0010\n r16 0210 0010\n map 0200 fails");
  ReceiveMode = 3;
  EXPECT_FALSE(PacketService());
  EXPECT_EQ(TakeOutput(), "");
}

TEST_F(PacketServiceStep, PrintsAFrameInAutoMode) {
  const std::string transcript = std::string(kTake) + kDumpLoads + kGiveBack;
  ScriptedBus bus(transcript.c_str());
  ReceiveMode = 1;
  EXPECT_TRUE(PacketService());
  EXPECT_EQ(TakeOutput(),
            "\n\rPacket length=0x003    reason=0x04\n\r"
            "02008020: 11 22 33 .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST_F(PacketServiceStep, ForwardsACopyOutOfWan) {
  MoveCursorTo(2);
  const std::string transcript = kTake + Query(2, kOneUse) + R"(
    mr8  02008020 11
    mw8  02001020 11
    mr8  02008021 22
    mw8  02001021 22
    mr8  02008022 33
    mw8  02001022 33
    r16  010c 0200
    map  0200
    lock
    mw16 02001000 0003
    w8   042a 01
    w8   0429 02
    r8   042b 02
    w8   042b 03
    r8   042b 01 x99
    r8   042b 03
    w8   042b 02
    unlock
    r8   042b 02
    r16  010c 0200     # the copy is a transmit buffer: nothing to give back
  )" + kGiveBack;
  ScriptedBus bus(transcript.c_str());
  ReceiveMode = 3;
  EXPECT_TRUE(PacketService());
  EXPECT_EQ(TakeOutput(), "");
  g_cursor = 3;
}

TEST_F(PacketServiceStep, SaysThatNoTransmitBufferIsFree) {
  MoveCursorTo(15);
  std::string transcript = kTake + Query(15, kTwoUses);
  for (unsigned handle = 1; handle <= 15; ++handle) transcript += Query(handle, kTwoUses);
  transcript += kGiveBack;
  ScriptedBus bus(transcript.c_str());
  ReceiveMode = 3;
  EXPECT_TRUE(PacketService());
  EXPECT_EQ(TakeOutput(), "\n\r!!!!!Fail to allocate Tx buffer!!!!!\n\r");
  g_cursor = 16;
}

TEST_F(PacketServiceStep, SaysThatTheCopyCouldNotBeSentAndFreesItAnyway) {
  MoveCursorTo(5);
  const std::string transcript = kTake + Query(5, kOneUse) + R"(
    mr8  02008020 11
    mw8  02002820 11
    mr8  02008021 22
    mw8  02002821 22
    mr8  02008022 33
    mw8  02002822 33
    r16  010c 0200
    map  0200 fails
    r16  010c 0200
  )" + kGiveBack;
  ScriptedBus bus(transcript.c_str());
  ReceiveMode = 3;
  EXPECT_TRUE(PacketService());
  EXPECT_EQ(TakeOutput(), "\n\r!!!!Tx fail!!!!\n\r");
  g_cursor = 6;
}

TEST_F(PacketServiceStep, OtherFramesThanArpPassTheReplyUntouched) {
  const std::string transcript = std::string(kTake) + kNoArpLoads + kGiveBack;
  ScriptedBus bus(transcript.c_str());
  ArpAutoReply = 1;
  EXPECT_TRUE(PacketServiceOn());
  EXPECT_TRUE(PacketService());
  EXPECT_EQ(TakeOutput(), "");
}

TEST_F(PacketServiceStep, BothSettingsActOnTheSameFrame) {
  const std::string transcript = std::string(kTake) + kNoArpLoads + kDumpLoads + kGiveBack;
  ScriptedBus bus(transcript.c_str());
  ArpAutoReply = 0x8000;
  ReceiveMode = 1;
  EXPECT_TRUE(PacketService());
  EXPECT_EQ(TakeOutput(),
            "\n\rPacket length=0x003    reason=0x04\n\r"
            "02008020: 11 22 33 .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

// The reply to a request from 02:11:22:33:44:55 (10.0.0.5), the CPU being 00:a0:b1:c2:d3:e4.
constexpr char kRequestLoads[] = R"(
  mr8  0200802c 08
  mr8  0200802d 06
  mr8  02008034 00
  mr8  02008035 01
)";
constexpr char kRest[] = R"(
  mw8  02008034 00         # operation 2
  mw8  02008035 02
  r8   0400 00
  r8   0401 a0
  r8   0402 b1
  r8   0403 c2
  r8   0404 d3
  r8   0405 e4
  mr8  02008036 02         # sender MAC
  mr8  02008037 11
  mr8  02008038 22
  mr8  02008039 33
  mr8  0200803a 44
  mr8  0200803b 55
  mw8  02008040 02         # target MAC
  mw8  02008041 11
  mw8  02008042 22
  mw8  02008043 33
  mw8  02008044 44
  mw8  02008045 55
  mw8  02008036 00
  mw8  02008037 a0
  mw8  02008038 b1
  mw8  02008039 c2
  mw8  0200803a d3
  mw8  0200803b e4
  mr8  02008026 06         # Ethernet source, not always the sender
  mr8  02008027 07
  mr8  02008028 08
  mr8  02008029 09
  mr8  0200802a 0a
  mr8  0200802b 0b
  mw8  02008020 06
  mw8  02008021 07
  mw8  02008022 08
  mw8  02008023 09
  mw8  02008024 0a
  mw8  02008025 0b
  mw8  02008026 00
  mw8  02008027 a0
  mw8  02008028 b1
  mw8  02008029 c2
  mw8  0200802a d3
  mw8  0200802b e4
)";
constexpr char kTargetLoads[] = R"(
  mr8  02008046 c0
  mr8  02008047 a8
  mr8  02008048 01
  mr8  02008049 01
)";

TEST_F(PacketServiceStep, AnArpRequestForThePortsAddressHasItsAddressesSwapped) {
  const std::string transcript =
      std::string(kRequestLoads) + "r32 0418 c0a80101\n" + kTargetLoads + R"(
    mr8  0200803c 0a
    mr8  0200803d 00
    mr8  0200803e 00
    mr8  0200803f 05
    mw8  0200803c c0
    mw8  0200803d a8
    mw8  0200803e 01
    mw8  0200803f 01
    mw8  02008046 0a
    mw8  02008047 00
    mw8  02008048 00
    mw8  02008049 05
  )" + kRest;
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(BuildArpReply(2, 0x02008020), DriverStatus::kOk);
}

TEST_F(PacketServiceStep, AnArpRequestForAnotherAddressIsAnsweredWithItsOwnAddresses) {
  const std::string transcript =
      std::string(kRequestLoads) + "r32 0410 c0a80102\n" + kTargetLoads + kRest;
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(BuildArpReply(1, 0x02008020), DriverStatus::kOk);
}

TEST_F(PacketServiceStep, OnlyArpRequestsToThePortsWithAnAddressAreAnswered) {
  {
    ScriptedBus bus("mr8 0200802c 86\n mr8 0200802d 06");
    EXPECT_EQ(BuildArpReply(1, 0x02008020), DriverStatus::kRefused);
  }
  {
    ScriptedBus bus(R"(
      mr8  0200802c 08
      mr8  0200802d 06
      mr8  02008034 01
      mr8  02008035 01
    )");
    EXPECT_EQ(BuildArpReply(1, 0x02008020), DriverStatus::kRefused);
  }
  {
    ScriptedBus bus(R"(
      mr8  0200802c 08
      mr8  0200802d 06
      mr8  02008034 00
      mr8  02008035 02
    )");
    EXPECT_EQ(BuildArpReply(1, 0x02008020), DriverStatus::kRefused);
  }
  for (const int port : {0, 3, 8, 15}) {
    ScriptedBus bus(kRequestLoads);
    EXPECT_EQ(BuildArpReply(static_cast<std::uint8_t>(port), 0x02008020), DriverStatus::kRefused);
  }
}

TEST_F(PacketServiceStep, TheReplyIsShownThenSentFromTheReceiveBuffer) {
  const std::string transcript = kTake + std::string(kRequestLoads) + "r32 0418 c0a80102\n" +
                                 kTargetLoads + kRest + kDumpLoads + R"(
    r16  010c 0200
    map  0200
    lock
    mw16 02008000 0003
    w8   042a 02           # LAN, class 0, low
    w8   0429 10
    r8   042b 02
    w8   042b 03
    r8   042b 01 x99
    r8   042b 03
    w8   042b 02
    unlock
    r8   042b 02
  )" + kGiveBack;
  ScriptedBus bus(transcript.c_str());
  ArpAutoReply = 1;
  EXPECT_TRUE(PacketService());
  EXPECT_EQ(TakeOutput(),
            "\n\reply ARP packet\n\r"
            "02008020: 11 22 33 .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST_F(PacketServiceStep, AReplyThatCannotBeSentMakesNoDifference) {
  const std::string transcript = kTake + std::string(kRequestLoads) + "r32 0418 c0a80102\n" +
                                 kTargetLoads + kRest + kDumpLoads +
                                 "r16 010c 0200\n map 0200 fails\n" + kGiveBack;
  ScriptedBus bus(transcript.c_str());
  ArpAutoReply = 1;
  EXPECT_TRUE(PacketService());
  EXPECT_EQ(TakeOutput(),
            "\n\reply ARP packet\n\r"
            "02008020: 11 22 33 .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

}  // namespace
}  // namespace monitor
