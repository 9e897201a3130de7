// The `frame` command: its traffic, output and results.
#include <gtest/gtest.h>

#include <cstdio>

#include "console/command.h"
#include "mac/packet_service.h"
#include "mac/transmit_buffers.h"
#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

class FrameCommandLine : public testing::Test {
 protected:
  void SetUp() override { ReceiveMode = 0; }
  void TearDown() override { ReceiveMode = 0; }

  /// Types the line, with that traffic and that result; what it printed.
  static std::string Type(const char* line, const char* transcript, int result) {
    ScriptedBus bus(transcript);
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, result) << line;
    return outcome.output;
  }
};

TEST_F(FrameCommandLine, AloneShowsBaseAndMode) {
  EXPECT_EQ(Type("frame", "r16 010c 0012", kDone),
            "BASE ADDRESS:   120000\n\rRECEIVING MODE: MANUAL\n\r");
  EXPECT_EQ(Type("frame r = auto", "", kDone), "");
  EXPECT_EQ(ReceiveMode, 1);
  EXPECT_EQ(Type("frame", "r16 010c 1234", kDone),
            "BASE ADDRESS: 12340000\n\rRECEIVING MODE: AUTO\n\r");
  EXPECT_EQ(Type("frame r = forward", "", kDone), "");
  EXPECT_EQ(ReceiveMode, 3);
  EXPECT_EQ(Type("frame", "r16 010c 1234", kDone),
            "BASE ADDRESS: 12340000\n\rRECEIVING MODE: FORWARD\n\r");
  EXPECT_EQ(Type("frame r = manual", "", kDone), "");
  EXPECT_EQ(ReceiveMode, 0);
}

TEST_F(FrameCommandLine, BaseIsWrittenAndReadBack) {
  EXPECT_EQ(Type("frame b = abcd", "w16 010c abcd\n r16 010c 1234", kDone),
            "BASE ADDRESS: 12340000\n\r");
}

TEST_F(FrameCommandLine, TransmitFormsTheAddressFromTheBaseBeforeTheDriverLoadsIt) {
  EXPECT_EQ(Type("frame t 640 5 lan 3 high", R"(
                   r16  010c 1234
                   r16  010c 1234
                   map  1234
                   lock
                   mw16 12342800 0640
                   w8   042a 72
                   w8   0429 05
                   r8   042b 02
                   w8   042b 03
                   r8   042b 01 x99
                   r8   042b 01
                   w8   042b 00
                   unlock
                   r8   042b 02
                 )",
                 kDone),
            "");
  // The driver refuses the class: by then the address has been formed.
  EXPECT_EQ(Type("frame t 40 1 wan 4 low", "r16 010c 1234", kFailed), "MAC Tx failed\n\r");
  EXPECT_EQ(
      Type("frame t 40 1 wan 0 low", "r16 010c 1234\n r16 010c 1234\n map 1234 fails", kFailed),
      "MAC Tx failed\n\r");
}

TEST_F(FrameCommandLine, ReceiveShowsTheFrameReleasesItAndAcknowledges) {
  EXPECT_EQ(Type("frame r", R"(
                   r16  010c 1234
                   r16  0210 0010
                   r16  0210 0010
                   map  1234
                   r8   0426 11
                   mr16 12348800 0803
                   mr8  12348809 01
                   mr8  1234880a 05
                   lock
                   r8   0427 04
                   w8   0427 06
                   r8   0427 06
                   w8   0427 04
                   unlock
                   mr8  12348820 de
                   mr8  12348821 ad
                   mr8  12348822 07
                   r16  010c 1234
                   lock
                   w8   0428 11
                   w8   0427 01
                   r8   0427 01
                   w8   0427 00
                   unlock
                   r8   0427 04
                   lock
                   w16  0210 0010
                   unlock
                 )",
                 kDone),
            "Packet length=0x003    reason=0x05\n\r"
            "12348820: DE AD 07 .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST_F(FrameCommandLine, ReceiveReleasesNothingOfHandle0AndAcknowledgesAnyway) {
  EXPECT_EQ(Type("frame r", R"(
                   r16  010c 1234
                   r16  0210 0010
                   r16  0210 0010
                   map  1234
                   r8   0426 00
                   mr16 12340000 0000
                   mr8  12340009 01
                   mr8  1234000a 00
                   lock
                   r8   0427 04
                   w8   0427 06
                   r8   0427 06
                   w8   0427 04
                   unlock
                   r16  010c 1234
                   lock
                   w16  0210 0010
                   unlock
                 )",
                 kDone),
            "Packet length=0x000    reason=0x00\n\r");
}

TEST_F(FrameCommandLine, ReceiveFailsWithoutAFrameOrWithoutMemory) {
  EXPECT_EQ(Type("frame r", "r16 010c 1234\n r16 0210 ffff\n r16 0210 0000", kFailed),
            "MAC Rx failed\n\r");
  EXPECT_EQ(
      Type("frame r", "r16 010c 1234\n r16 0210 0010\n r16 0210 0010\n map 1234 fails", kFailed),
      "MAC Rx failed\n\r");
}

TEST_F(FrameCommandLine, StatusFormsTheAddressBeforeEachQuery) {
  std::string transcript;
  std::string wanted;
  for (unsigned handle = 1; handle <= 15; ++handle) {
    transcript += Query(handle, handle == 10 ? kTwoUses : kOneUse);
    char line[80];
    std::snprintf(line, sizeof(line), "STATUS OF BUFFER HANDLE%2x IS: %s\n\r", handle,
                  handle == 10 ? "FRAME IS IN QUEUE" : "FRAME BEEN TRANSMITTED");
    wanted += line;
  }
  EXPECT_EQ(Type("frame s", transcript.c_str(), kDone), wanted);
}

TEST_F(FrameCommandLine, StatusOfOneHandleIgnoresFurtherWords) {
  EXPECT_EQ(Type("frame s 10 and more words", Query(16, kOneUse).c_str(), kDone),
            "STATUS OF BUFFER HANDLE10 IS: FRAME IS IN QUEUE\n\r");
  EXPECT_EQ(Type("frame s 0", "r16 010c 0200\n r16 010c 0200", kFailed),
            "MAC TxBufferStatus failed\n\r");
}

/// The loads of the forwarding record, with these values of 0x105 and 0x107.
std::string RecordLoads(const char* filter, const char* forward) {
  return std::string("r8 0105 ") + filter + "\n r8 0107 " + forward +
         "\n r8 0106 a4\n r8 0104 a2\n r16 000c a5dc\n";
}

TEST_F(FrameCommandLine, AFlagIsReadTwiceToBeShown) {
  EXPECT_EQ(Type("frame f", (RecordLoads("00", "ff") + RecordLoads("04", "ff")).c_str(), kDone),
            "Filter WAN to WAN packets: ENABLE\n\r");
  EXPECT_EQ(Type("frame d", (RecordLoads("ff", "08") + RecordLoads("ff", "f7")).c_str(), kDone),
            "Drop Check sum error packets: DISABLE\n\r");
}

TEST_F(FrameCommandLine, AFlagIsSetInTheWholeRecord) {
  constexpr char kStores[] = R"(
    lock
    r8  0105 a1
    w8  0105 a1            # filter WAN to WAN stays off
    r8  0107 00
    w8  0107 08            # drop checksum errors: on
    r8  0107 7f
    w8  0107 ff
    r8  0107 ff
    w8  0107 bf
    r8  0107 df
    w8  0107 ff
    r8  0107 ff
    w8  0107 ef
    r8  0107 fd
    w8  0107 ff
    r8  0107 ff
    w8  0107 fe
    r8  0106 a4
    w8  0106 a4
    r8  0104 ae
    w8  0104 a2
    r8  0104 a3
    w8  0104 a2
    w16 000c 05dc
    unlock
  )";
  // 107 = a2: frgnn, mirrwan and the PPPoE filter are on.
  const std::string transcript = RecordLoads("a1", "a2") + kStores + RecordLoads("00", "08");
  EXPECT_EQ(Type("frame d enable", transcript.c_str(), kDone),
            "Drop Check sum error packets: ENABLE\n\r");
}

TEST_F(FrameCommandLine, ABadFlagWordIsFoundAfterTheFirstRead) {
  EXPECT_EQ(Type("frame f on", RecordLoads("a5", "a5").c_str(), kUsage), "");
  EXPECT_EQ(Type("frame d =", RecordLoads("a5", "a5").c_str(), kUsage), "");
}

TEST_F(FrameCommandLine, OtherWordsAreRefusedUntouched) {
  for (const char* const line : {"frame f enable x",
                                 "frame d enable x",
                                 "frame b",
                                 "frame b =",
                                 "frame b 1234",
                                 "frame b : 1234",
                                 "frame b = 12345",
                                 "frame b = xyz",
                                 "frame b = 1 2",
                                 "frame t 40 1 wan 0",
                                 "frame t 40 1 wan 0 low x",
                                 "frame t 12345 1 wan 0 low",
                                 "frame t 40 123 wan 0 low",
                                 "frame t 40 1 all 0 low",
                                 "frame t 40 1 wan 123 low",
                                 "frame t 40 1 wan 0 middle",
                                 "frame r =",
                                 "frame r auto x",
                                 "frame r = 1",
                                 "frame r = auto x",
                                 "frame s 123",
                                 "frame s xyz",
                                 "frame x",
                                 "frame wan",
                                 "frame ff"}) {
    for (const char* const complete : {"frame t 40 1 wan 0 high", "frame r = auto", "frame b = 1",
                                       "frame s 1", "frame f enable"}) {
      LeaveWords(complete);
      EXPECT_EQ(Type(line, "", kUsage), "") << line << ", after " << complete;
    }
  }
  EXPECT_EQ(ReceiveMode, 0);
}

}  // namespace
}  // namespace monitor
