#include "tables/mcast.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

constexpr McastEntry kGroup{.ip = 0xE0010203, .ports = 0x0A, .valid = 0};  // LAN and CPU

TEST(Mcast, ReadStoresTheSlotPulsesTheEngineAndLoadsTheGroup) {
  ScriptedBus bus(R"(
    w8  0622 3f
    r8  0621 a3        # ready
    r8  0621 bb
    w8  0621 b6        # (bb OR 04) AND f6: the counter select stays
    r8  0621 b6
    w8  0621 b2        # start cleared
    r8  0621 b2 x3     # not done
    r8  0621 b3
    r32 061c e0010203
    r8  0620 f5        # valid, DMZ, WAN; junk above
  )");
  McastEntry entry{};
  EXPECT_EQ(McastRead(0x3F, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.ip, 0xE0010203U);
  EXPECT_EQ(entry.ports, 0x05);
  EXPECT_EQ(entry.valid, 1);
}

TEST(Mcast, AnInvalidSlotStillHasItsPorts) {
  ScriptedBus bus(R"(
    w8  0622 00
    r8  0621 03
    r8  0621 40
    w8  0621 44
    r8  0621 44
    w8  0621 40
    r8  0621 01
    r32 061c 01020304
    r8  0620 ef
  )");
  McastEntry entry{};
  EXPECT_EQ(McastRead(0, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.ports, 0x0F);
  EXPECT_EQ(entry.valid, 0);
}

TEST(Mcast, ABusyEngineStopsAReadAfterTheSlot) {
  for (const char* const command : {"00", "01", "02", "fc"}) {
    const std::string transcript = std::string("w8 0622 05\n r8 0621 ") + command;
    ScriptedBus bus(transcript.c_str());
    McastEntry entry{};
    EXPECT_EQ(McastRead(5, entry), DriverStatus::kNotReady);
  }
}

TEST(Mcast, SlotsAbove63AndPortsAboveFAreRefusedUntouched) {
  ScriptedBus bus("");
  McastEntry entry = kGroup;
  std::uint32_t value = 0;
  EXPECT_EQ(McastRead(64, entry), DriverStatus::kRefused);
  EXPECT_EQ(McastWrite(64, entry), DriverStatus::kRefused);
  EXPECT_EQ(McastDelete(64), DriverStatus::kRefused);
  EXPECT_EQ(McastReadCounter(64, value), DriverStatus::kRefused);
  EXPECT_EQ(McastWriteCounter(64, value), DriverStatus::kRefused);
  for (const int ports : {0x10, 0x20, 0x40, 0x80, 0xFF}) {
    entry.ports = static_cast<std::uint8_t>(ports);
    EXPECT_EQ(McastWrite(0, entry), DriverStatus::kRefused);
  }
}

TEST(Mcast, WriteClearsTheCounterSelectAndReleasesTheLockBeforeTheWait) {
  ScriptedBus bus(R"(
    lock
    w8  0622 05
    w32 061c e0010203
    w8  0620 1a        # valid, CPU, LAN
    r8  0621 a7
    r8  0621 b3
    w8  0621 ad        # (b3 OR 0c) AND ed
    r8  0621 ad
    w8  0621 a9
    unlock
    r8  0621 a5
    r8  0621 a6
  )");
  EXPECT_EQ(McastWrite(5, kGroup), DriverStatus::kOk);
}

TEST(Mcast, ABusyEngineStopsAWriteWithTheLockReleased) {
  ScriptedBus bus(R"(
    lock
    w8  0622 05
    w32 061c e0010203
    w8  0620 1a
    r8  0621 01
    unlock
  )");
  EXPECT_EQ(McastWrite(5, kGroup), DriverStatus::kNotReady);
}

TEST(Mcast, DeleteReadsTheSlotThenClearsItsValidBit) {
  ScriptedBus bus(R"(
    w8  0622 09
    r8  0621 03
    r8  0621 13
    w8  0621 16        # counter select kept
    r8  0621 16
    w8  0621 12
    r8  0621 13
    lock
    w8  0622 09
    r8  0620 b5
    w8  0620 a5
    r8  0621 03
    r8  0621 13
    w8  0621 0d        # and cleared by the write
    r8  0621 0d
    w8  0621 09
    unlock
    r8  0621 03
  )");
  EXPECT_EQ(McastDelete(9), DriverStatus::kOk);
}

TEST(Mcast, ADeleteMayFindTheEngineBusyTwice) {
  {
    ScriptedBus bus("w8 0622 09\n r8 0621 02");
    EXPECT_EQ(McastDelete(9), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    w8  0622 09
    r8  0621 03
    r8  0621 40
    w8  0621 44
    r8  0621 44
    w8  0621 40
    r8  0621 01
    lock
    w8  0622 09
    r8  0620 11
    w8  0620 01
    r8  0621 01        # the read is done, writes are not ready
    unlock
  )");
  EXPECT_EQ(McastDelete(9), DriverStatus::kNotReady);
}

TEST(Mcast, CounterReadDoesNotSelectTheCounter) {
  ScriptedBus bus(R"(
    w8  0622 05
    r8  0621 03
    r8  0621 a3
    w8  0621 a6        # (a3 OR 04) AND f6
    r8  0621 a6
    w8  0621 a2
    r8  0621 a3
    r32 062c 12345678
    w8  0622 05
    r8  0621 03
    r8  0621 5c
    w8  0621 54
    r8  0621 54
    w8  0621 50
    r8  0621 a3
    r32 062c 12345678
  )");
  std::uint32_t value = 0;
  EXPECT_EQ(McastReadCounter(5, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x12345678U);
  EXPECT_EQ(McastReadCounter(5, value), DriverStatus::kOk);
}

TEST(Mcast, CounterWriteSelectsTheCounter) {
  ScriptedBus bus(R"(
    lock
    w8  0622 05
    w32 062c 12345678
    r8  0621 03
    r8  0621 a3
    w8  0621 bd        # (a3 OR 1c) AND fd
    r8  0621 bd
    w8  0621 b9
    unlock
    r8  0621 bb
    lock
    w8  0622 05
    w32 062c 12345678
    r8  0621 03
    r8  0621 5c
    w8  0621 5c
    r8  0621 5c
    w8  0621 58
    unlock
    r8  0621 bb
  )");
  EXPECT_EQ(McastWriteCounter(5, 0x12345678), DriverStatus::kOk);
  EXPECT_EQ(McastWriteCounter(5, 0x12345678), DriverStatus::kOk);
}

TEST(Mcast, ABusyEngineStopsTheCounterSteps) {
  std::uint32_t value = 0x55;
  {
    ScriptedBus bus("w8 0622 05\n r8 0621 01");
    EXPECT_EQ(McastReadCounter(5, value), DriverStatus::kNotReady);
    EXPECT_EQ(value, 0x55U);
  }
  ScriptedBus bus("lock\n w8 0622 05\n w32 062c 00000055\n r8 0621 02\n unlock");
  EXPECT_EQ(McastWriteCounter(5, value), DriverStatus::kNotReady);
}

TEST(Mcast, OverflowCheckKeepsTheCounterSelect) {
  ScriptedBus bus(R"(
    r8  0621 03
    r8  0621 b3
    w8  0621 b6
    r8  0621 b6
    w8  0621 b2
    r8  0621 b3
    r8  0624 80
    r8  0625 01
    r8  0626 02
    r8  0627 03
    r8  0628 04
    r8  0629 05
    r8  062a 06
    r8  062b 07
    r8  0621 03
    r8  0621 4c
    w8  0621 44
    r8  0621 44
    w8  0621 40
    r8  0621 b3
    r8  0624 80
    r8  0625 01
    r8  0626 02
    r8  0627 03
    r8  0628 04
    r8  0629 05
    r8  062a 06
    r8  062b 07
  )");
  EntryMap map{};
  EXPECT_EQ(McastCheckOverflow(map), DriverStatus::kOk);
  EXPECT_EQ(map, (EntryMap{0x80, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(McastCheckOverflow(map), DriverStatus::kOk);
}

TEST(Mcast, OverflowClearKeepsTheCounterSelect) {
  ScriptedBus bus(R"(
    lock
    w8  0624 80
    w8  0625 01
    w8  0626 02
    w8  0627 03
    w8  0628 04
    w8  0629 05
    w8  062a 06
    w8  062b 07
    r8  0621 03
    r8  0621 b3
    w8  0621 bd        # (b3 OR 0c) AND fd
    r8  0621 bd
    w8  0621 b9
    unlock
    r8  0621 02
    lock
    w8  0624 80
    w8  0625 01
    w8  0626 02
    w8  0627 03
    w8  0628 04
    w8  0629 05
    w8  062a 06
    w8  062b 07
    r8  0621 03
    r8  0621 4c
    w8  0621 4c
    r8  0621 4c
    w8  0621 48
    unlock
    r8  0621 02
  )");
  EXPECT_EQ(McastClearOverflow({0x80, 1, 2, 3, 4, 5, 6, 7}), DriverStatus::kOk);
  EXPECT_EQ(McastClearOverflow({0x80, 1, 2, 3, 4, 5, 6, 7}), DriverStatus::kOk);
}

TEST(Mcast, ABusyEngineStopsTheOverflowSteps) {
  {
    ScriptedBus bus("r8 0621 fe");
    EntryMap map{};
    EXPECT_EQ(McastCheckOverflow(map), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    lock
    w8  0624 00
    w8  0625 00
    w8  0626 00
    w8  0627 00
    w8  0628 00
    w8  0629 00
    w8  062a 00
    w8  062b 00
    r8  0621 fd
    unlock
  )");
  EXPECT_EQ(McastClearOverflow({}), DriverStatus::kNotReady);
}

TEST(Mcast, FloodControlIsBit3OfTheFilterByteAndTheFilterIsNowhere) {
  ScriptedBus bus(R"(
    r8 0105 08
    r8 0105 f7
    lock
    r8 0105 a5
    w8 0105 ad
    unlock
    lock
    r8 0105 ad
    w8 0105 a5
    unlock
  )");
  McastSettings settings{.flood = 9, .filter = 7};
  McastReadFlood(settings);
  EXPECT_EQ(settings.flood, 1);
  McastReadFlood(settings);
  EXPECT_EQ(settings.flood, 0);
  EXPECT_EQ(settings.filter, 7);
  McastWriteFlood({.flood = 1, .filter = 0});
  McastWriteFlood({.flood = 0, .filter = 1});
}

TEST(Mcast, TheSettingsAreReadBeforeABadWordIsFound) {
  for (const char* const line :
       {"mcast f flood", "mcast f flood 1 filter", "mcast f flood 2", "mcast f filter 01",
        "mcast f flod 1", "mcast f 1 flood", "mcast f flood 1 1"}) {
    ScriptedBus bus("r8 0105 00");
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, kUsage) << line;
    EXPECT_EQ(outcome.output, "") << line;
  }
}

TEST(Mcast, AnUnpairedLastWordDoesNotTakeAStaleValue) {
  {
    ScriptedBus bus("r8 0105 00\n lock\n r8 0105 00\n w8 0105 08\n unlock\n r8 0105 08");
    EXPECT_EQ(RunLine("mcast f flood 1").result, kDone);
  }
  // The slot after the last word still holds the 1.
  ScriptedBus bus("r8 0105 08");
  EXPECT_EQ(RunLine("mcast f flood").result, kUsage);
}

TEST(Mcast, SettingsAreReadWrittenAndReadAgain) {
  ScriptedBus bus(R"(
    r8 0105 a5
    lock
    r8 0105 a5
    w8 0105 ad
    unlock
    r8 0105 a5         # the bit did not stick
  )");
  const Outcome outcome = RunLine("mcast f filter 1 flood 0 flood 1");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "MCAST Flood Control: DISABLE\n\r"
            "Filter out multicast table missed packets: ENABLE\n\r");
}

TEST(Mcast, WithoutTheSignAWriteDoesNothingAndIsDone) {
  ScriptedBus bus("");
  for (const char* const line : {"mcast 5 6 7", "mcast 3f 224.1.2.3 lan wan",
                                 "mcast 5 lan = 1 2 3 4 5 6", "mcast 0 c d f"}) {
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, kDone) << line;
    EXPECT_EQ(outcome.output, "") << line;
  }
  EXPECT_EQ(RunLine("mcast 40 6 7").result, kUsage);
  EXPECT_EQ(RunLine("mcast x 6 7").result, kUsage);
}

/// A whole read step of slot 5 and the registers of its group.
constexpr char kReadSlot5[] = R"(
    w8  0622 05
    r8  0621 03
    r8  0621 40
    w8  0621 44
    r8  0621 44
    w8  0621 40
    r8  0621 03
)";

/// The write of a counter of 7 to slot 5, or to slot 0 at the head of all.
std::string WriteCounter(const char* slot) {
  return std::string("lock\n w8 0622 ") + slot + R"(
    w32 062c 00000007
    r8  0621 03
    r8  0621 03
    w8  0621 1d
    r8  0621 1d
    w8  0621 19
    unlock
    r8  0621 1b
  )";
}

TEST(Mcast, EveryFormHasItsOwnTextWhenTheEngineIsBusyForItsSecondStep) {
  struct Case {
    const char* line;
    std::string first;
    const char* second;
    const char* output;
  };
  const std::string write_group = R"(
    lock
    w8  0622 05
    w32 061c e0010203
    w8  0620 13
    r8  0621 03
    r8  0621 40
    w8  0621 4c
    r8  0621 4c
    w8  0621 48
    unlock
    r8  0621 03
  )";
  const std::string delete_group = kReadSlot5 + std::string(R"(
    lock
    w8  0622 05
    r8  0620 13
    w8  0620 03
    r8  0621 03
    r8  0621 40
    w8  0621 4c
    r8  0621 4c
    w8  0621 48
    unlock
    r8  0621 03
  )");
  const std::string pulse_clear = R"(
    r8  0621 03
    r8  0621 40
    w8  0621 4c
    r8  0621 4c
    w8  0621 48
    unlock
    r8  0621 03
  )";
  const std::string clear_all = R"(
    lock
    w8  0624 ff
    w8  0625 ff
    w8  0626 ff
    w8  0627 ff
    w8  0628 ff
    w8  0629 ff
    w8  062a ff
    w8  062b ff
  )" + pulse_clear;
  const std::string clear_5 = R"(
    lock
    w8  0624 00
    w8  0625 00
    w8  0626 00
    w8  0627 00
    w8  0628 00
    w8  0629 00
    w8  062a 00
    w8  062b 20
  )" + pulse_clear;
  const char* const read_busy = "w8 0622 05\n r8 0621 02";
  const Case cases[] = {
      {"mcast 5 = 224.1.2.3 wan lan", write_group, read_busy, "MCAST Read failed\n\r"},
      {"mcast d 5", delete_group, read_busy, "MCAST Read failed\n\r"},
      {"mcast c = 7", WriteCounter("00"), "w8 0622 00\n r8 0621 02",
       "MCAST ReadCountet failed\n\r"},
      {"mcast c 5 = 7", WriteCounter("05"), read_busy, "MCAST ReadCounter failed\n\r"},
      {"mcast o =", clear_all, "r8 0621 02", "MCAST CheckOverflow failed\n\r"},
      {"mcast o 5 =", clear_5, "r8 0621 02", "MCAST CheckOverflow failed\n\r"},
  };
  for (const Case& c : cases) {
    const std::string transcript = c.first + c.second;
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome = RunLine(c.line);
    EXPECT_EQ(outcome.result, kFailed) << c.line;
    EXPECT_EQ(outcome.output, c.output) << c.line;
  }
}

TEST(Mcast, BadWordsTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"mcast 5 = 224.0.0.1 lan wan", "mcast d 5 1", "mcast c 5 = 1",
                      "mcast o 5 =", "mcast f flood 1 filter 1"},
                     {
                         "mcast",
                         "mcast g",
                         "mcast 40",
                         "mcast 100",
                         "mcast 5 100",
                         "mcast 5 =",
                         "mcast 40 = 224.1.2.3",
                         "mcast 5 = 224.1.2",
                         "mcast 5 = 224.1.2.3 eth",
                         "mcast 5 = 224.1.2.3 wan lan dmz cpu wan",
                         "mcast d",
                         "mcast d 40",
                         "mcast d 5 100",
                         "mcast d 5 6 7",
                         "mcast c 40",
                         "mcast c = g",
                         "mcast c 5 6",
                         "mcast c 40 = 1",
                         "mcast c 5 6 7",
                         "mcast c 5 = 123456789",
                         "mcast c 5 = 6 7",
                         "mcast o 40",
                         "mcast o 40 =",
                         "mcast o = 5",
                         "mcast o 5 6",
                         "mcast o 5 = 6",
                     });
}

}  // namespace
}  // namespace monitor
