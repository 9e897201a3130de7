#include "mac/stat_counters.h"

#include <gtest/gtest.h>

#include <string>

#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

// After the selector, with junk in the command byte.
constexpr char kReadStep[] = R"(
    r8  085c a7
    r8  085c fb
    w8  085c f6        # (fb OR 04) AND f6
    r8  085c f7
    w8  085c f3        # start cleared
    r8  085c a4 x2     # not done
    r8  085c a5
)";
constexpr char kWriteStep[] = R"(
    r8  085c a7
    r8  085c a3
    w8  085c ad        # (a3 OR 0c) AND fd
    r8  085c af
    w8  085c ab        # start cleared
    r8  085c a9 x2     # not done
    r8  085c a6
)";

constexpr char kDigits[] = "0123456789abcdef";

std::string SelectorStore(unsigned selector) {
  return std::string("w8 085d ") + kDigits[selector / 16] + kDigits[selector % 16] + "\n";
}

// With 11223344 in word A and 55667788 in word B.
struct Expected {
  const char* name;
  unsigned group;
  char word;
  std::uint32_t value;
};
constexpr Expected kExpected[28] = {
    {"SC_BYTESENT", 0, 'A', 0x11223344},
    {"SC_UNICASTSENT", 0, 'B', 0x667788},
    {"SC_FRMSNDFAIL", 0, 'B', 0x55},
    {"SC_FLWCTRLFRMSENT", 1, 'A', 0x3344},
    {"SC_NONUNICASTSENT", 1, 'A', 0x1122},
    {"SC_BYTERECV", 1, 'B', 0x55667788},
    {"SC_FRAMERECV", 2, 'A', 0x11223344},
    {"SC_TOTALBYTERECV", 2, 'B', 0x55667788},
    {"SC_TOTALFRMRECV", 3, 'A', 0x223344},
    {"SC_FLWCTRLRECV", 3, 'A', 0x11},
    {"SC_MCASTFRMRECV", 3, 'B', 0x7788},
    {"SC_BCASTFRMRECV", 3, 'B', 0x5566},
    {"SC_FRM64BYTE", 4, 'A', 0x223344},
    {"SC_JABBEROVRFRM", 4, 'A', 0x11},
    {"SC_FRM65TO127BYTE", 4, 'B', 0x667788},
    {"SC_OVERSIZEFRM", 4, 'B', 0x55},
    {"SC_FRM128TO255BYTE", 5, 'A', 0x3344},
    {"SC_FRM256TO511BYTE", 5, 'A', 0x1122},
    {"SC_FRM512TO1023BYTE", 5, 'B', 0x7788},
    {"SC_FRM1024TO1528BYTE", 5, 'B', 0x5566},
    {"SC_FRAGMENT", 6, 'A', 0x3344},
    {"SC_ALIGNMENTERR", 6, 'A', 0x22},
    {"SC_UNDERSIZEFRM", 6, 'A', 0x11},
    {"SC_CRC", 6, 'B', 0x7788},
    {"SC_SHORTEVENT", 6, 'B', 0x5566},
    {"SC_COLLISION", 7, 'A', 0x3344},
    {"SC_DROP", 7, 'A', 0x1122},
    {"SC_LATECOLLISION", 7, 'B', 0x55},
};

TEST(StatCounters, NamesStandInIndexOrder) {
  for (unsigned i = 0; i < 28; ++i) EXPECT_STREQ(StatCounterNames[i], kExpected[i].name);
}

TEST(StatCounters, ReadLoadsOnlyTheWordOfTheCounter) {
  for (unsigned i = 0; i < 28; ++i) {
    const std::string transcript =
        SelectorStore(8 + kExpected[i].group) + kReadStep +
        (kExpected[i].word == 'A' ? "r32 0858 11223344" : "r32 0854 55667788");
    ScriptedBus bus(transcript.c_str());
    std::uint32_t value = 0;
    EXPECT_EQ(ReadStatCounter(2, i, value), DriverStatus::kOk);
    EXPECT_EQ(value, kExpected[i].value) << kExpected[i].name;
  }
}

TEST(StatCounters, PortsAreBits4To3OfTheSelector) {
  const std::string transcript = SelectorStore(0x07) + kReadStep + "r32 0858 0\n" +
                                 SelectorStore(0x0F) + kReadStep + "r32 0858 0\n" +
                                 SelectorStore(0x17) + kReadStep + "r32 0858 0\n";
  ScriptedBus bus(transcript.c_str());
  std::uint32_t value = 0;
  EXPECT_EQ(ReadStatCounter(1, 25, value), DriverStatus::kOk);
  EXPECT_EQ(ReadStatCounter(2, 25, value), DriverStatus::kOk);
  EXPECT_EQ(ReadStatCounter(4, 25, value), DriverStatus::kOk);
}

TEST(StatCounters, BatchLoadsWordAThenBOfEachGroup) {
  std::string transcript;
  for (unsigned group = 0; group < 8; ++group) {
    transcript += SelectorStore(16 + group) + kReadStep + "r32 0858 11223344\n r32 0854 55667788\n";
  }
  ScriptedBus bus(transcript.c_str());
  StatCounterBlock block{};
  EXPECT_EQ(BatchReadStatCounters(4, block), DriverStatus::kOk);
  for (unsigned i = 0; i < 28; ++i) {
    EXPECT_EQ(block[i], kExpected[i].value) << kExpected[i].name;
  }
}

TEST(StatCounters, ABusyEngineLeavesTheGroupsBeforeItFilled) {
  const std::string transcript = SelectorStore(0) + kReadStep +
                                 "r32 0858 11223344\n r32 0854 55667788\n" + SelectorStore(1) +
                                 "r8 085c fe";
  ScriptedBus bus(transcript.c_str());
  StatCounterBlock block{};
  block[3] = 9;
  EXPECT_EQ(BatchReadStatCounters(1, block), DriverStatus::kNotReady);
  EXPECT_EQ(block[0], 0x11223344U);
  EXPECT_EQ(block[1], 0x667788U);
  EXPECT_EQ(block[2], 0x55U);
  EXPECT_EQ(block[3], 9U);
}

TEST(StatCounters, ClearAllGivesWordAWhatWordBHolds) {
  std::string transcript;
  for (unsigned group = 0; group < 8; ++group) {
    transcript += SelectorStore(8 + group) +
                  "w32 0854 00000000\n r32 0854 a5000001\n w32 0858 a5000001\n" + kWriteStep;
  }
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(ClearAllStatCounters(2), DriverStatus::kOk);
}

TEST(StatCounters, ABusyEngineStopsTheClearAfterTheDataOfItsGroup) {
  constexpr char kData[] = "w32 0854 00000000\n r32 0854 00000000\n w32 0858 00000000\n";
  const std::string transcript =
      SelectorStore(0) + kData + kWriteStep + SelectorStore(1) + kData + "r8 085c fd";
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(ClearAllStatCounters(1), DriverStatus::kNotReady);
}

TEST(StatCounters, OverflowIsReadThroughGroup0) {
  const std::string transcript = SelectorStore(0x10) + kReadStep + "r32 0850 8f00ff01";
  ScriptedBus bus(transcript.c_str());
  std::uint32_t mask = 0;
  EXPECT_EQ(CheckStatOverflow(4, mask), DriverStatus::kOk);
  EXPECT_EQ(mask, 0x8F00FF01U);
}

TEST(StatCounters, OverflowClearLocksAfterTheSelectorAndWaitsAfterTheLock) {
  ScriptedBus bus(R"(
    w8  085d 08
    lock
    w32 0850 04000001
    r8  085c 03
    r8  085c a3
    w8  085c ad        # (a3 OR 0c) AND fd
    r8  085c af
    w8  085c ab        # start cleared
    unlock
    r8  085c 01
    r8  085c 02
  )");
  EXPECT_EQ(ClearStatOverflow(2, 0x04000001), DriverStatus::kOk);
}

TEST(StatCounters, ABusyEngineStopsTheOtherSteps) {
  for (const char* const command : {"00", "01", "02", "fc"}) {
    const std::string busy = std::string("r8 085c ") + command + "\n";
    const std::string transcript = SelectorStore(3) + busy + SelectorStore(0) + busy +
                                   SelectorStore(0) + "lock\n w32 0850 ffffffff\n" + busy +
                                   "unlock";
    ScriptedBus bus(transcript.c_str());
    std::uint32_t value = 0x55;
    EXPECT_EQ(ReadStatCounter(1, 10, value), DriverStatus::kNotReady);
    EXPECT_EQ(CheckStatOverflow(1, value), DriverStatus::kNotReady);
    EXPECT_EQ(value, 0x55U);
    EXPECT_EQ(ClearStatOverflow(1, 0xFFFFFFFF), DriverStatus::kNotReady);
  }
}

TEST(StatCounters, OtherPortsAndIndicesAreRefusedUntouched) {
  ScriptedBus bus("");
  std::uint32_t value = 0;
  StatCounterBlock block{};
  for (const auto port : std::initializer_list<std::uint8_t>{0, 3, 5, 8, 16}) {
    EXPECT_EQ(ReadStatCounter(port, 0, value), DriverStatus::kRefused);
    EXPECT_EQ(BatchReadStatCounters(port, block), DriverStatus::kRefused);
    EXPECT_EQ(ClearAllStatCounters(port), DriverStatus::kRefused);
    EXPECT_EQ(CheckStatOverflow(port, value), DriverStatus::kRefused);
    EXPECT_EQ(ClearStatOverflow(port, 1), DriverStatus::kRefused);
  }
  EXPECT_EQ(ReadStatCounter(1, 28, value), DriverStatus::kRefused);
}

TEST(StatCounters, TheCommandClearsOneBitOrAll) {
  constexpr char kRest[] = R"(
    r8  085c 03
    r8  085c 40
    w8  085c 4c
    r8  085c 4c
    w8  085c 48
    unlock
    r8  085c 03
  )";
  const std::string transcript = std::string("w8 085d 00\n lock\n w32 0850 04000000\n") + kRest +
                                 "w8 085d 10\n lock\n w32 0850 ffffffff\n" + kRest;
  ScriptedBus bus(transcript.c_str());
  Outcome outcome = RunLine("sc o wan sc_drop =");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "");
  outcome = RunLine("sc o dmz =");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "");
}

TEST(StatCounters, CtrlCEndsAWaitThatNeverEnds) {
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    w8  085d 06
    r8  085c 03
    r8  085c 40
    w8  085c 44
    r8  085c 44
    w8  085c 40
    r8  085c 02 x100000
  )");
  const Outcome outcome = RunLine("sc wan sc_crc");
  PressCtrlCInWaits(false);
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "SC Read failed\n\r");
}

TEST(StatCounters, WhatDoesNotFitTouchesNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused(
      {"sc o lan 1 =", "sc c lan", "sc lan 1"},
      {"sc", "sc cpu", "sc wan bogus", "sc wan =", "sc wan sc_drop =", "sc wan sc_drop sc_drop",
       "sc c", "sc c cpu", "sc c wan sc_drop", "sc o", "sc o cpu", "sc o wan bogus",
       "sc o wan sc_drop :", "sc o wan bogus =", "sc o wan = =", "sc o wan sc_drop = 1",
       "sc sc_drop"});
}

}  // namespace
}  // namespace monitor
