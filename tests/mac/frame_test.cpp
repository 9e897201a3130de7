#include "mac/frame.h"

#include <gtest/gtest.h>

#include <array>

#include "mac/transmit_buffers.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

TEST(Frame, TheBaseIsOneSwappedHalfword) {
  ScriptedBus bus(R"(
    r16 010c 1234
    w16 010c fedc
  )");
  std::uint16_t base = 0;
  EXPECT_EQ(ReadBufferBase(base), DriverStatus::kOk);
  EXPECT_EQ(base, 0x1234);
  EXPECT_EQ(WriteBufferBase(0xFEDC), DriverStatus::kOk);
}

TEST(Frame, DataAddressesFollowTheHeaderOf32Bytes) {
  EXPECT_EQ(FrameDataAddress(0x1234, 0), 0x12340020U);
  EXPECT_EQ(FrameDataAddress(0x1234, 0x10), 0x12348020U);
  EXPECT_EQ(FrameDataAddress(0x1234, 0xFF), 0x123BF820U);
}

TEST(Frame, TransmitStoresTheLengthPulsesTheStartAndWaits) {
  ScriptedBus bus(R"(
    r16  010c 1234
    map  1234
    lock
    mw16 12342800 f640     # handle 5; the length is not cut
    w8   042a 72           # high, class 3, LAN
    w8   0429 05
    r8   042b a4
    w8   042b a5
    r8   042b a5 x99
    r8   042b a7
    w8   042b a6
    unlock
    r8   042b a5 x3        # not done
    r8   042b 02
  )");
  EXPECT_EQ(TransmitFrame(2, 3, true, 0x12342820, 0xF640), DriverStatus::kOk);
}

TEST(Frame, TransmitTakesAnyHandleAndAnyOfTheFourPorts) {
  // Buffers past the highest base are at the start of the address space.
  ScriptedBus bus(R"(
    r16  010c ffff
    map  ffff
    lock
    mw16 0006f800 0000     # handle ff
    w8   042a 08           # low, class 0, CPU
    w8   0429 ff
    r8   042b fe
    w8   042b ff
    r8   042b ff x99
    r8   042b ff
    w8   042b fe
    unlock
    r8   042b fe
    r16  010c 0000
    map  0000
    lock
    mw16 00000000 0040     # handle 0
    w8   042a 14           # low, class 1, DMZ
    w8   0429 00
    r8   042b 02
    w8   042b 03
    r8   042b 00 x99
    r8   042b 01
    w8   042b 00
    unlock
    r8   042b 02
  )");
  EXPECT_EQ(TransmitFrame(8, 0, false, 0x0006F820, 0), DriverStatus::kOk);
  EXPECT_EQ(TransmitFrame(4, 1, false, 0x00000020, 0x40), DriverStatus::kOk);
}

TEST(Frame, TransmitRefusesAClassAbove3AndABadPortUntouched) {
  ScriptedBus bus("");
  EXPECT_EQ(TransmitFrame(1, 4, false, 0x12342820, 0x40), DriverStatus::kRefused);
  EXPECT_EQ(TransmitFrame(1, 0xFF, false, 0x12342820, 0x40), DriverStatus::kRefused);
  for (const std::uint8_t port : std::to_array<std::uint8_t>({0, 3, 5, 15, 16, 17})) {
    EXPECT_EQ(TransmitFrame(port, 0, false, 0x12342820, 0x40), DriverStatus::kRefused);
  }
}

TEST(Frame, TransmitWithoutMemoryStartsNothing) {
  ScriptedBus bus("r16 010c 1234\n map 1234 fails");
  EXPECT_EQ(TransmitFrame(1, 0, false, 0x12342820, 0x40), DriverStatus::kNotReady);
}

TEST(Frame, CtrlCEndsTheWaitForATransmission) {
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    r16  010c 1234
    map  1234
    lock
    mw16 12342800 0040
    w8   042a 01
    w8   0429 05
    r8   042b 00
    w8   042b 01
    r8   042b 01 x99
    r8   042b 01
    w8   042b 00
    unlock
    r8   042b 00 x100000
  )");
  EXPECT_EQ(TransmitFrame(1, 0, false, 0x12342820, 0x40), DriverStatus::kNotReady);
  PressCtrlCInWaits(false);
}

TEST(Frame, ReceiveReadsTheHeaderThenAcknowledges) {
  ScriptedBus bus(R"(
    r16  010c 1234
    r16  0210 a5ef
    r16  0210 a510
    map  1234
    r8   0426 80
    mr16 12380000 fdea     # 11 bits count
    mr8  12380009 f4       # 4 bits count
    mr8  1238000a f3       # 5 bits count
    lock
    r8   0427 a5
    w8   0427 a7
    r8   0427 f3
    w8   0427 f1
    unlock
  )");
  ReceivedFrame frame{};
  EXPECT_EQ(ReceiveFrame(frame), DriverStatus::kOk);
  EXPECT_EQ(frame.data, 0x12380020U);
  EXPECT_EQ(frame.length, 0x5EA);
  EXPECT_EQ(frame.port, 4);
  EXPECT_EQ(frame.reason, 0x13);
}

TEST(Frame, ReceiveFindsNoFrameWhenTheSecondLoadOfTheStatusSaysSo) {
  ScriptedBus bus("r16 010c 1234\n r16 0210 ffff\n r16 0210 ffef");
  ReceivedFrame frame{};
  EXPECT_EQ(ReceiveFrame(frame), DriverStatus::kNothing);
}

TEST(Frame, ReceiveWithoutMemoryLeavesTheFrameWaiting) {
  ScriptedBus bus("r16 010c 1234\n r16 0210 0010\n r16 0210 0010\n map 1234 fails");
  ReceivedFrame frame{};
  EXPECT_EQ(ReceiveFrame(frame), DriverStatus::kNotReady);
}

TEST(Frame, StatusCountsUsesWithoutTheMonitorsOwnHold) {
  ScriptedBus bus(R"(
    r16 010c 1234
    lock
    w8  0431 0f
    r8  0430 c2
    w8  0430 c1            # (c2 OR 01) AND fd
    r8  0430 e7
    w8  0430 e6
    r8  0430 c1 x2         # not done
    r8  0430 fe
    unlock
    r8  0430 cb            # two uses
  )");
  std::uint8_t count = 0;
  EXPECT_EQ(TxBufferStatus(0x12347820, count), DriverStatus::kOk);
  EXPECT_EQ(count, 1);
}

TEST(Frame, StatusOfATransmitBufferWithoutAnyUseWrapsTo255) {
  ScriptedBus bus(R"(
    r16 010c 1234
    lock
    w8  0431 01
    r8  0430 3c
    w8  0430 3d
    r8  0430 3d
    w8  0430 3c
    r8  0430 02
    unlock
    r8  0430 c3            # no use
  )");
  std::uint8_t count = 0;
  EXPECT_EQ(TxBufferStatus(0x12340820, count), DriverStatus::kOk);
  EXPECT_EQ(count, 255);
}

TEST(Frame, StatusOfAReceiveBufferCountsEveryUse) {
  ScriptedBus bus(R"(
    r16 010c 1234
    lock
    w8  0431 10
    r8  0430 00
    w8  0430 01
    r8  0430 01
    w8  0430 00
    r8  0430 02
    unlock
    r8  0430 3e            # fifteen uses
    r16 010c 1234
    lock
    w8  0431 ff
    r8  0430 00
    w8  0430 01
    r8  0430 01
    w8  0430 00
    r8  0430 02
    unlock
    r8  0430 02            # none
  )");
  std::uint8_t count = 7;
  EXPECT_EQ(TxBufferStatus(0x12348020, count), DriverStatus::kOk);
  EXPECT_EQ(count, 15);
  EXPECT_EQ(TxBufferStatus(0x123BF820, count), DriverStatus::kOk);
  EXPECT_EQ(count, 0);
}

TEST(Frame, StatusAndReleaseRefuseHandle0AfterTheBase) {
  ScriptedBus bus("r16 010c 1234\n r16 010c 1234");
  std::uint8_t count = 7;
  EXPECT_EQ(TxBufferStatus(0x12340020, count), DriverStatus::kRefused);
  EXPECT_EQ(count, 7);
  EXPECT_EQ(FreeFrameBuffer(0x12340020), DriverStatus::kRefused);
}

TEST(Frame, TheHandleIsWhatBeginsAtOrBeforeTheAddressCutToEightBits) {
  ScriptedBus bus(R"(
    r16 010c 1234
    r16 010c 1234
    r16 010c 1234
    lock
    w8  0428 ff
    w8  0427 01
    r8  0427 01
    w8  0427 00
    unlock
    r8  0427 04
  )");
  EXPECT_EQ(FreeFrameBuffer(0x1234081F), DriverStatus::kRefused);  // a byte before handle 1
  EXPECT_EQ(FreeFrameBuffer(0x123C0020), DriverStatus::kRefused);  // handle 100
  EXPECT_EQ(FreeFrameBuffer(0x1234001F), DriverStatus::kOk);       // a byte before handle 0
}

TEST(Frame, CtrlCEndsTheWaitForAStatusAndReleasesTheLock) {
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    r16 010c 1234
    lock
    w8  0431 05
    r8  0430 00
    w8  0430 01
    r8  0430 01
    w8  0430 00
    r8  0430 00 x100000
    unlock
  )");
  std::uint8_t count = 7;
  EXPECT_EQ(TxBufferStatus(0x12342820, count), DriverStatus::kNotReady);
  PressCtrlCInWaits(false);
}

TEST(Frame, AllocationGoesRoundAndSkipsBusyBuffers) {
  MoveCursorTo(1);
  const std::string transcript = Query(1, kOneUse) + Query(2, kTwoUses) + Query(3, kOneUse);
  ScriptedBus bus(transcript.c_str());
  std::uint32_t data = 0;
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kOk);
  EXPECT_EQ(data, 0x02000820U);
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kOk);
  EXPECT_EQ(data, 0x02001820U);
  g_cursor = 4;
}

TEST(Frame, ABufferOfNoUseAtAllIsNotFree) {
  MoveCursorTo(4);
  const std::string transcript = Query(4, kNoUse) + Query(5, kOneUse);
  ScriptedBus bus(transcript.c_str());
  std::uint32_t data = 0;
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kOk);
  EXPECT_EQ(data, 0x02002820U);
  g_cursor = 6;
}

TEST(Frame, TheLastBufferOfTheFirstRoundIsFound) {
  MoveCursorTo(15);
  ScriptedBus bus(Query(15, kOneUse).c_str());
  std::uint32_t data = 0;
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kOk);
  EXPECT_EQ(data, 0x02007820U);
  g_cursor = 1;
}

TEST(Frame, WithEveryBufferBusyAllocationFailsAfterTwoRounds) {
  MoveCursorTo(1);
  std::string transcript;
  for (int round = 0; round < 2; ++round) {
    for (unsigned handle = 1; handle <= 15; ++handle) transcript += Query(handle, kTwoUses);
  }
  ScriptedBus bus(transcript.c_str());
  std::uint32_t data = 0;
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kNotReady);
  EXPECT_EQ(data, 0x02007820U);
  g_cursor = 16;
}

TEST(Frame, TheLastBufferOfTheSecondRoundIsNotFoundEvenIfFree) {
  MoveCursorTo(15);
  std::string transcript = Query(15, kTwoUses);
  for (unsigned handle = 1; handle <= 14; ++handle) transcript += Query(handle, kTwoUses);
  transcript += Query(15, kOneUse);
  ScriptedBus bus(transcript.c_str());
  std::uint32_t data = 0;
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kNotReady);
  EXPECT_EQ(data, 0x02007820U);
  g_cursor = 16;
}

TEST(Frame, AfterAFailureAllocationFirstTriesTheBufferAfterTheLast) {
  MoveCursorTo(15);
  std::string transcript = Query(15, kTwoUses);
  for (unsigned handle = 1; handle <= 15; ++handle) transcript += Query(handle, kTwoUses);
  // That one is a receive buffer: its uses count in full.
  transcript += Query(16, kNoUse) + Query(1, kOneUse);
  ScriptedBus bus(transcript.c_str());
  std::uint32_t data = 0;
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kNotReady);
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kOk);
  EXPECT_EQ(data, 0x02008020U);
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kOk);
  EXPECT_EQ(data, 0x02000820U);
  g_cursor = 2;
}

TEST(Frame, TheBufferAfterTheLastEndsTheFirstRound) {
  MoveCursorTo(15);
  std::string transcript = Query(15, kTwoUses);
  for (unsigned handle = 1; handle <= 15; ++handle) transcript += Query(handle, kTwoUses);
  transcript += Query(16, kOneUse);
  for (unsigned handle = 1; handle <= 15; ++handle) transcript += Query(handle, kTwoUses);
  ScriptedBus bus(transcript.c_str());
  std::uint32_t data = 0;
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kNotReady);
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kNotReady);
  g_cursor = 16;
}

TEST(Frame, CtrlCEndsAnAllocation) {
  MoveCursorTo(3);
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    r16 010c 0200
    r16 010c 0200
    lock
    w8  0431 03
    r8  0430 00
    w8  0430 01
    r8  0430 01
    w8  0430 00
    r8  0430 00 x100000
    unlock
  )");
  std::uint32_t data = 0;
  EXPECT_EQ(AllocTxBuffer(data), DriverStatus::kNotReady);
  PressCtrlCInWaits(false);
}

TEST(Frame, ReleasingATransmitBufferDoesNotInvolveTheChip) {
  ScriptedBus bus("r16 010c 1234\n r16 010c 1234");
  EXPECT_EQ(FreeFrameBuffer(0x12340820), DriverStatus::kOk);  // handle 1
  EXPECT_EQ(FreeFrameBuffer(0x12347820), DriverStatus::kOk);  // handle f
}

// The handle is recovered by a division: of whatever address, counted from the first data byte.
TEST(Frame, AddressesUpToTheNextBuffersDataBelongToABuffer) {
  ScriptedBus bus("r16 010c 1234\n r16 010c 1234");
  EXPECT_EQ(FreeFrameBuffer(0x1234081F), DriverStatus::kRefused);  // handle 0
  EXPECT_EQ(FreeFrameBuffer(0x1234801F), DriverStatus::kOk);       // handle f
}

TEST(Frame, AReleasedReceiveBufferGoesBackToTheChip) {
  ScriptedBus bus(R"(
    r16 010c 1234
    lock
    w8  0428 10
    w8  0427 01            # the whole byte
    r8  0427 a5
    w8  0427 a4
    unlock
    r8  0427 fb x2         # not done
    r8  0427 04
  )");
  EXPECT_EQ(FreeFrameBuffer(0x12348020), DriverStatus::kOk);
}

TEST(Frame, CtrlCEndsTheWaitForARelease) {
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    r16 010c 1234
    lock
    w8  0428 ff
    w8  0427 01
    r8  0427 01
    w8  0427 00
    unlock
    r8  0427 00 x100000
  )");
  EXPECT_EQ(FreeFrameBuffer(0x123BF820), DriverStatus::kNotReady);
  PressCtrlCInWaits(false);
}

}  // namespace
}  // namespace monitor
