#include "tables/l3_route.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

constexpr L3Route kRoute{.ip = 0x0A010200,
                         .mask = 24,
                         .nextHop = 0x0A010201,
                         .port = 2,
                         .direct = 1,
                         .wanMac = 0,
                         .pppoe = 1,
                         .session = 2,
                         .valid = 0};

TEST(L3Route, ReadStoresTheSlotPulsesTheEngineAndLoadsTheRoute) {
  ScriptedBus bus(R"(
    w8  060e 3f
    r8  060d f3        # ready
    r8  060d fb
    w8  060d e6        # (fb OR 04) AND e6
    r8  060d e7
    w8  060d e3        # start cleared
    r8  060d a4 x3     # not done
    r8  060d a5
    r32 0600 0a010200
    r32 0608 0a010201
    r8  0604 18
    r8  060c f4        # WAN MAC, direct, valid, DMZ; junk above
    r8  0605 fd
  )");
  L3Route route{};
  EXPECT_EQ(L3Read(0x3F, route), DriverStatus::kOk);
  EXPECT_EQ(route.ip, 0x0A010200U);
  EXPECT_EQ(route.nextHop, 0x0A010201U);
  EXPECT_EQ(route.mask, 0x18);
  EXPECT_EQ(route.port, 4);
  EXPECT_EQ(route.direct, 1);
  EXPECT_EQ(route.wanMac, 1);
  EXPECT_EQ(route.valid, 1);
  EXPECT_EQ(route.pppoe, 1);
  EXPECT_EQ(route.session, 2);
}

TEST(L3Route, AnInvalidSlotKeepsThePort) {
  ScriptedBus bus(R"(
    w8  060e 00
    r8  060d 03
    r8  060d 40
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d 01
    r32 0600 00000000
    r32 0608 00000000
    r8  0604 00
    r8  060c 83        # not valid, two port bits
    r8  0605 04
  )");
  L3Route route{};
  route.port = 8;
  EXPECT_EQ(L3Read(0, route), DriverStatus::kOk);
  EXPECT_EQ(route.port, 8);
  EXPECT_EQ(route.valid, 0);
  EXPECT_EQ(route.session, 2);
}

TEST(L3Route, AValidSlotWithTwoPortsIsRefusedBeforeTheEncapsulationIsRead) {
  ScriptedBus bus(R"(
    w8  060e 07
    r8  060d 03
    r8  060d 40
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d 03
    r32 0600 01020304
    r32 0608 05060708
    r8  0604 20
    r8  060c 13
  )");
  L3Route route{};
  EXPECT_EQ(L3Read(7, route), DriverStatus::kRefused);
}

TEST(L3Route, ABusyEngineStopsAReadAfterTheSlot) {
  for (const char* const command : {"00", "01", "02", "fc"}) {
    const std::string transcript = std::string("w8 060e 05\n r8 060d ") + command;
    ScriptedBus bus(transcript.c_str());
    L3Route route{};
    EXPECT_EQ(L3Read(5, route), DriverStatus::kNotReady);
  }
}

TEST(L3Route, SlotsAbove63AreRefusedUntouched) {
  ScriptedBus bus("");
  L3Route route = kRoute;
  std::uint32_t value = 0;
  EXPECT_EQ(L3Read(64, route), DriverStatus::kRefused);
  EXPECT_EQ(L3Write(64, route), DriverStatus::kRefused);
  EXPECT_EQ(L3Delete(64), DriverStatus::kRefused);
  EXPECT_EQ(L3ReadCounter(64, value), DriverStatus::kRefused);
  EXPECT_EQ(L3WriteCounter(64, value), DriverStatus::kRefused);
  route.mask = 33;
  EXPECT_EQ(L3Write(0, route), DriverStatus::kRefused);
}

TEST(L3Route, WriteReleasesTheLockBeforeTheWait) {
  ScriptedBus bus(R"(
    lock
    w8  060e 05
    w32 0600 0a010200
    w32 0608 0a010201
    w8  0604 18
    w8  060c 32        # LAN, valid, direct
    w8  0605 05        # PPPoE, session 2
    r8  060d a7
    r8  060d b3
    w8  060d ad        # (b3 OR 0c) AND ed
    r8  060d ad
    w8  060d a9
    unlock
    r8  060d a5
    r8  060d a6
  )");
  EXPECT_EQ(L3Write(5, kRoute), DriverStatus::kOk);
}

TEST(L3Route, WriteDoesNotCutPppoeAndSession) {
  ScriptedBus bus(R"(
    lock
    w8  060e 3f
    w32 0600 0a010200
    w32 0608 0a010201
    w8  0604 20
    w8  060c 58        # CPU, valid, WAN MAC
    w8  0605 ff        # f OR (fe shifted by one), cut to the register
    r8  060d 03
    r8  060d 40
    w8  060d 4c
    r8  060d 4c
    w8  060d 48
    unlock
    r8  060d 02
  )");
  L3Route route = kRoute;
  route.mask = 32;
  route.port = 8;
  route.direct = 0;
  route.wanMac = 1;
  route.pppoe = 0x0F;
  route.session = 0xFE;
  EXPECT_EQ(L3Write(63, route), DriverStatus::kOk);
}

TEST(L3Route, ABadPortIsRefusedAfterTheMask) {
  ScriptedBus bus(R"(
    lock
    w8  060e 05
    w32 0600 0a010200
    w32 0608 0a010201
    w8  0604 18
    unlock
  )");
  L3Route route = kRoute;
  route.port = 3;
  EXPECT_EQ(L3Write(5, route), DriverStatus::kRefused);
}

TEST(L3Route, ABusyEngineStopsAWriteWithTheLockReleased) {
  ScriptedBus bus(R"(
    lock
    w8  060e 05
    w32 0600 0a010200
    w32 0608 0a010201
    w8  0604 18
    w8  060c 32
    w8  0605 05
    r8  060d 01
    unlock
  )");
  EXPECT_EQ(L3Write(5, kRoute), DriverStatus::kNotReady);
}

TEST(L3Route, DeleteReadsTheSlotThenClearsItsValidBit) {
  ScriptedBus bus(R"(
    w8  060e 09
    r8  060d 03
    r8  060d 13
    w8  060d 06        # counter select cleared
    r8  060d 06
    w8  060d 02
    r8  060d 03
    lock
    w8  060e 09
    r8  060c b5
    w8  060c a5
    r8  060d 03
    r8  060d 13
    w8  060d 0d
    r8  060d 0d
    w8  060d 09
    unlock
    r8  060d 03
  )");
  EXPECT_EQ(L3Delete(9), DriverStatus::kOk);
}

TEST(L3Route, ADeleteMayFindTheEngineBusyTwice) {
  {
    ScriptedBus bus("w8 060e 09\n r8 060d 02");
    EXPECT_EQ(L3Delete(9), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    w8  060e 09
    r8  060d 03
    r8  060d 40
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d 01
    lock
    w8  060e 09
    r8  060c 11
    w8  060c 01
    r8  060d 01        # the read is done, writes are not ready
    unlock
  )");
  EXPECT_EQ(L3Delete(9), DriverStatus::kNotReady);
}

TEST(L3Route, CounterReadSelectsTheCounter) {
  ScriptedBus bus(R"(
    w8  060e 05
    r8  060d 03
    r8  060d a3
    w8  060d b6        # (a3 OR 14) AND f6
    r8  060d b6
    w8  060d b2
    r8  060d b3
    r32 0610 12345678
    w8  060e 05
    r8  060d 03
    r8  060d 5c
    w8  060d 54
    r8  060d 54
    w8  060d 50
    r8  060d b3
    r32 0610 12345678
  )");
  std::uint32_t value = 0;
  EXPECT_EQ(L3ReadCounter(5, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x12345678U);
  EXPECT_EQ(L3ReadCounter(5, value), DriverStatus::kOk);
}

TEST(L3Route, CounterWriteSelectsTheCounter) {
  ScriptedBus bus(R"(
    lock
    w8  060e 05
    w32 0610 12345678
    r8  060d 03
    r8  060d a3
    w8  060d bd        # (a3 OR 1c) AND fd
    r8  060d bd
    w8  060d b9
    unlock
    r8  060d bb
    lock
    w8  060e 05
    w32 0610 12345678
    r8  060d 03
    r8  060d 5c
    w8  060d 5c
    r8  060d 5c
    w8  060d 58
    unlock
    r8  060d bb
  )");
  EXPECT_EQ(L3WriteCounter(5, 0x12345678), DriverStatus::kOk);
  EXPECT_EQ(L3WriteCounter(5, 0x12345678), DriverStatus::kOk);
}

TEST(L3Route, ABusyEngineStopsTheCounterSteps) {
  std::uint32_t value = 0x55;
  {
    ScriptedBus bus("w8 060e 05\n r8 060d 01");
    EXPECT_EQ(L3ReadCounter(5, value), DriverStatus::kNotReady);
    EXPECT_EQ(value, 0x55U);
  }
  ScriptedBus bus("lock\n w8 060e 05\n w32 0610 00000055\n r8 060d 02\n unlock");
  EXPECT_EQ(L3WriteCounter(5, value), DriverStatus::kNotReady);
}

TEST(L3Route, OverflowCheckKeepsTheCounterSelect) {
  ScriptedBus bus(R"(
    r8  060d 03
    r8  060d b3
    w8  060d b6        # (b3 OR 04) AND f6: bit 4 stays
    r8  060d b6
    w8  060d b2
    r8  060d b3
    r8  0614 80
    r8  0615 01
    r8  0616 02
    r8  0617 03
    r8  0618 04
    r8  0619 05
    r8  061a 06
    r8  061b 07
    r8  060d 03
    r8  060d 4c
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d b3
    r8  0614 80
    r8  0615 01
    r8  0616 02
    r8  0617 03
    r8  0618 04
    r8  0619 05
    r8  061a 06
    r8  061b 07
  )");
  EntryMap map{};
  EXPECT_EQ(L3CheckOverflow(map), DriverStatus::kOk);
  EXPECT_EQ(map, (EntryMap{0x80, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(L3CheckOverflow(map), DriverStatus::kOk);
}

TEST(L3Route, OverflowClearKeepsTheCounterSelect) {
  ScriptedBus bus(R"(
    lock
    w8  0614 80
    w8  0615 01
    w8  0616 02
    w8  0617 03
    w8  0618 04
    w8  0619 05
    w8  061a 06
    w8  061b 07
    r8  060d 03
    r8  060d b3
    w8  060d bd        # (b3 OR 0c) AND fd
    r8  060d bd
    w8  060d b9
    unlock
    r8  060d 02
    lock
    w8  0614 80
    w8  0615 01
    w8  0616 02
    w8  0617 03
    w8  0618 04
    w8  0619 05
    w8  061a 06
    w8  061b 07
    r8  060d 03
    r8  060d 4c
    w8  060d 4c
    r8  060d 4c
    w8  060d 48
    unlock
    r8  060d 02
  )");
  EXPECT_EQ(L3ClearOverflow({0x80, 1, 2, 3, 4, 5, 6, 7}), DriverStatus::kOk);
  EXPECT_EQ(L3ClearOverflow({0x80, 1, 2, 3, 4, 5, 6, 7}), DriverStatus::kOk);
}

TEST(L3Route, ABusyEngineStopsTheOverflowSteps) {
  {
    ScriptedBus bus("r8 060d fe");
    EntryMap map{};
    EXPECT_EQ(L3CheckOverflow(map), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    lock
    w8  0614 00
    w8  0615 00
    w8  0616 00
    w8  0617 00
    w8  0618 00
    w8  0619 00
    w8  061a 00
    w8  061b 00
    r8  060d fd
    unlock
  )");
  EXPECT_EQ(L3ClearOverflow({}), DriverStatus::kNotReady);
}

TEST(L3Route, TheFilterIsBit6OfTheFilterByteAndNothingElse) {
  ScriptedBus bus(R"(
    r8 0105 40
    r8 0105 bf
    lock
    r8 0105 a5
    w8 0105 e5
    unlock
    lock
    r8 0105 e5
    w8 0105 a5
    unlock
  )");
  std::uint8_t on = 9;
  L3ReadFilter(on);
  EXPECT_EQ(on, 1);
  L3ReadFilter(on);
  EXPECT_EQ(on, 0);
  L3WriteFilter(1);
  L3WriteFilter(0);
}

TEST(L3Route, CtrlCEndsAWaitThatNeverEnds) {
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    w8  060e 05
    r8  060d 03
    r8  060d 03
    w8  060d 16
    r8  060d 16
    w8  060d 12
    r8  060d 12 x100000
  )");
  const Outcome outcome = RunLine("l3 c 5");
  PressCtrlCInWaits(false);
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "L3 ReadCounter failed\n\r");
}

TEST(L3Route, AWriteReadsBackAndAnInvalidAnswerShowsTheTypedPort) {
  ScriptedBus bus(R"(
    lock
    w8  060e 05
    w32 0600 0a010200
    w32 0608 0a010201
    w8  0604 18
    w8  060c 12
    w8  0605 00
    r8  060d 03
    r8  060d 40
    w8  060d 4c
    r8  060d 4c
    w8  060d 48
    unlock
    r8  060d 03
    w8  060e 05
    r8  060d 03
    r8  060d 40
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d 03
    r32 0600 0a010200
    r32 0608 0a010201
    r8  0604 18
    r8  060c 04        # the slot did not become valid
    r8  0605 00
  )");
  const Outcome outcome = RunLine("l3 5 = 10.1.2.0 18 10.1.2.1 lan 0 0");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "INDEX:  5\tINVALID\n\r"
            "IP: 10.1.2.0        MASK: 18 NEXT HOP: 10.1.2.1       \n\r"
            "PORT: LAN \tIPOE \tSESSION ID:  0\tDIRECT: FALSE \tWANMAC: FALSE\n\r"
            "\n\r");
}

TEST(L3Route, OfADeletedRangeOnlyRoutesThatStayValidAreShown) {
  ScriptedBus bus(R"(
    w8  060e 05        # slot 5: the delete
    r8  060d 03
    r8  060d 40
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d 03
    lock
    w8  060e 05
    r8  060c b2
    w8  060c a2
    r8  060d 03
    r8  060d 40
    w8  060d 4c
    r8  060d 4c
    w8  060d 48
    unlock
    r8  060d 03
    w8  060e 05        # what it has become: still valid
    r8  060d 03
    r8  060d 40
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d 03
    r32 0600 0a010200
    r32 0608 0a010201
    r8  0604 18
    r8  060c d2
    r8  0605 ad
    w8  060e 06        # slot 6: the delete
    r8  060d 03
    r8  060d 40
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d 03
    lock
    w8  060e 06
    r8  060c b2
    w8  060c a2
    r8  060d 03
    r8  060d 40
    w8  060d 4c
    r8  060d 4c
    w8  060d 48
    unlock
    r8  060d 03
    w8  060e 06        # what it has become: invalid
    r8  060d 03
    r8  060d 40
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d 03
    r32 0600 0a010200
    r32 0608 0a010201
    r8  0604 18
    r8  060c a2
    r8  0605 ad
  )");
  const Outcome outcome = RunLine("l3 d 5 2");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "INDEX:  5\tVALID\n\r"
            "IP: 10.1.2.0        MASK: 18 NEXT HOP: 10.1.2.1       \n\r"
            "PORT: LAN \tPPPOE \tSESSION ID:  2\tDIRECT: FALSE \tWANMAC: TRUE\n\r"
            "\n\r");
}

TEST(L3Route, AnOverflowBitThatStaysSetIsTrueWithALineEnd) {
  ScriptedBus bus(R"(
    lock
    w8  0614 00
    w8  0615 00
    w8  0616 00
    w8  0617 00
    w8  0618 00
    w8  0619 02        # slot 11 in hexadecimal, 17 in decimal
    w8  061a 00
    w8  061b 00
    r8  060d 03
    r8  060d 40
    w8  060d 4c
    r8  060d 4c
    w8  060d 48
    unlock
    r8  060d 02
    r8  060d 03
    r8  060d 40
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d 01
    r8  0614 ff
    r8  0615 ff
    r8  0616 ff
    r8  0617 ff
    r8  0618 ff
    r8  0619 02
    r8  061a ff
    r8  061b ff
  )");
  const Outcome outcome = RunLine("l3 o 11 =");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "INDEX 17:TRUE\n\r");
}

TEST(L3Route, EveryFormHasItsTextWhenTheEngineIsBusyForItsSecondStep) {
  struct Case {
    const char* line;
    std::string first;
    const char* second;
    const char* output;
  };
  const std::string write_route = R"(
    lock
    w8  060e 05
    w32 0600 0a010200
    w32 0608 0a010201
    w8  0604 18
    w8  060c 12
    w8  0605 00
    r8  060d 03
    r8  060d 40
    w8  060d 4c
    r8  060d 4c
    w8  060d 48
    unlock
    r8  060d 03
  )";
  const std::string delete_route = R"(
    w8  060e 05
    r8  060d 03
    r8  060d 40
    w8  060d 44
    r8  060d 44
    w8  060d 40
    r8  060d 03
    lock
    w8  060e 05
    r8  060c 12
    w8  060c 02
    r8  060d 03
    r8  060d 40
    w8  060d 4c
    r8  060d 4c
    w8  060d 48
    unlock
    r8  060d 03
  )";
  const std::string write_counter = R"(
    lock
    w8  060e 05
    w32 0610 00000007
    r8  060d 03
    r8  060d 03
    w8  060d 1d
    r8  060d 1d
    w8  060d 19
    unlock
    r8  060d 1b
  )";
  const std::string pulse_clear = R"(
    r8  060d 03
    r8  060d 40
    w8  060d 4c
    r8  060d 4c
    w8  060d 48
    unlock
    r8  060d 03
  )";
  const std::string clear_all = R"(
    lock
    w8  0614 ff
    w8  0615 ff
    w8  0616 ff
    w8  0617 ff
    w8  0618 ff
    w8  0619 ff
    w8  061a ff
    w8  061b ff
  )" + pulse_clear;
  const std::string clear_5 = R"(
    lock
    w8  0614 00
    w8  0615 00
    w8  0616 00
    w8  0617 00
    w8  0618 00
    w8  0619 00
    w8  061a 00
    w8  061b 20
  )" + pulse_clear;
  const char* const read_busy = "w8 060e 05\n r8 060d 02";
  const Case cases[] = {
      {"l3 5 = 10.1.2.0 18 10.1.2.1 lan 0 0", write_route, read_busy, "L3 Read failed\n\r"},
      {"l3 d 5", delete_route, read_busy, "L3 Read failed\n\r"},
      {"l3 c 5 = 7", write_counter, read_busy, "L3 Read Counter failed\n\r"},
      {"l3 o =", clear_all, "r8 060d 02", "L3 CheckOverflow failed\n\r"},
      {"l3 o 5 =", clear_5, "r8 060d 02", "L3 CheckOverflow failed\n\r"},
  };
  for (const Case& c : cases) {
    const std::string transcript = c.first + c.second;
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome = RunLine(c.line);
    EXPECT_EQ(outcome.result, kFailed) << c.line;
    EXPECT_EQ(outcome.output, c.output) << c.line;
  }
}

TEST(L3Route, BadWordsTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"l3 5 = 10.1.2.0 18 10.1.2.1 lan 0 0 direct wanmac", "l3 d 5 1", "l3 c 5 = 1",
                      "l3 o 5 =", "l3 f enable"},
                     {
                         "l3",
                         "l3 g",
                         "l3 40",
                         "l3 100",
                         "l3 5 100",
                         "l3 5 =",
                         "l3 40 = 10.1.2.0 18 10.1.2.1 lan 0 0",
                         "l3 5 6 10.1.2.0 18 10.1.2.1 lan 0 0",
                         "l3 5 = 10.1.2.0 18 10.1.2.1 lan 0",
                         "l3 5 = 10.1.2 18 10.1.2.1 lan 0 0",
                         "l3 5 = 10.1.2.0 118 10.1.2.1 lan 0 0",
                         "l3 5 = 10.1.2.0 18 10.1.2.256 lan 0 0",
                         "l3 5 = 10.1.2.0 18 10.1.2.1 eth 0 0",
                         "l3 5 = 10.1.2.0 18 10.1.2.1 lan 10 0",
                         "l3 5 = 10.1.2.0 18 10.1.2.1 lan 0 100",
                         "l3 5 = 10.1.2.0 18 10.1.2.1 lan 0 0 direkt",
                         "l3 5 = 10.1.2.0 18 10.1.2.1 lan 0 0 direct wanmac direct",
                         "l3 d",
                         "l3 d 40",
                         "l3 d 5 100",
                         "l3 d 5 6 7",
                         "l3 c 40",
                         "l3 c = g",
                         "l3 c 5 6",
                         "l3 c 40 = 1",
                         "l3 c 5 6 7",
                         "l3 c 5 = 123456789",
                         "l3 c 5 = 6 7",
                         "l3 o 40",
                         "l3 o 40 =",
                         "l3 o = 5",
                         "l3 o 5 6",
                         "l3 o 5 = 6",
                         "l3 f on",
                         "l3 f enable 1",
                     });
}

}  // namespace
}  // namespace monitor
