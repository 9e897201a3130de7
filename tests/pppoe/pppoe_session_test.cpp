#include "pppoe/pppoe_session.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

constexpr MacAddress kMac{0x02, 0x13, 0x24, 0x35, 0x46, 0x57};
constexpr PstEntry kEntry{.ip = 0x0A000001,
                          .sessionId = {0x12, 0x34},
                          .vlanId = {0x00, 0x05},
                          .serverMac = kMac,
                          .tag = 0,
                          .force = 1,
                          .used = 0,
                          .valid = 0};

TEST(PppoeSession, ReadStoresTheIndexPulsesTheEngineAndLoadsTheEntry) {
  ScriptedBus bus(R"(
    w8  0a0e 30
    r8  0a0f a3        # ready
    r8  0a0f ab
    w8  0a0f a6        # (ab OR 04) AND f6
    r8  0a0f a7
    w8  0a0f a3        # start cleared
    r8  0a0f a2 x3     # not done
    r8  0a0f 01
    r32 0a00 0a000001
    r16 0a04 1234
    r16 0a06 0005
    r8  0a08 02
    r8  0a09 13
    r8  0a0a 24
    r8  0a0b 35
    r8  0a0c 46
    r8  0a0d 57
    r8  0a0e fa        # force, used; not tag, not valid; junk above
  )");
  PstEntry entry{};
  EXPECT_EQ(PstRead(3, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.ip, 0x0A000001U);
  EXPECT_EQ(IdToNumber(entry.sessionId), 0x1234);
  EXPECT_EQ(IdToNumber(entry.vlanId), 0x0005);
  EXPECT_EQ(entry.serverMac, kMac);
  EXPECT_EQ(entry.force, 1);
  EXPECT_EQ(entry.used, 1);
  EXPECT_EQ(entry.tag, 0);
  EXPECT_EQ(entry.valid, 0);
}

TEST(PppoeSession, ReadOfTheOtherSwitches) {
  ScriptedBus bus(R"(
    w8  0a0e 00
    r8  0a0f 03
    r8  0a0f 40
    w8  0a0f 44
    r8  0a0f 44
    w8  0a0f 40
    r8  0a0f 03
    r32 0a00 ffffffff
    r16 0a04 ffff
    r16 0a06 8001
    r8  0a08 ff
    r8  0a09 ff
    r8  0a0a ff
    r8  0a0b ff
    r8  0a0c ff
    r8  0a0d ff
    r8  0a0e 05
  )");
  PstEntry entry{};
  EXPECT_EQ(PstRead(0, entry), DriverStatus::kOk);
  EXPECT_EQ(IdToNumber(entry.vlanId), 0x8001);
  EXPECT_EQ(entry.force, 0);
  EXPECT_EQ(entry.used, 0);
  EXPECT_EQ(entry.tag, 1);
  EXPECT_EQ(entry.valid, 1);
}

TEST(PppoeSession, ReadLeavesIdsLowByteFirst) {
  EXPECT_EQ(NumberToId(0x1234), (RecordId{0x34, 0x12}));
  EXPECT_EQ(IdToNumber({0x34, 0x12}), 0x1234);
  EXPECT_EQ(IdToRegister({0x34, 0x12}), 0x3412);
  EXPECT_EQ(SwapId({0x34, 0x12}), (RecordId{0x12, 0x34}));
}

TEST(PppoeSession, ABusyEngineStopsAReadAfterTheIndex) {
  for (const char* const command : {"00", "01", "02", "fc"}) {
    const std::string transcript = std::string("w8 0a0e 20\n r8 0a0f ") + command;
    ScriptedBus bus(transcript.c_str());
    PstEntry entry{};
    EXPECT_EQ(PstRead(2, entry), DriverStatus::kNotReady);
  }
}

TEST(PppoeSession, IndicesAbove3AreRefusedUntouched) {
  ScriptedBus bus("");
  PstEntry entry = kEntry;
  EXPECT_EQ(PstRead(4, entry), DriverStatus::kRefused);
  EXPECT_EQ(PstWrite(4, entry), DriverStatus::kRefused);
  EXPECT_EQ(PstDelete(4), DriverStatus::kRefused);
  EXPECT_EQ(PstClear(4), DriverStatus::kRefused);
}

TEST(PppoeSession, WriteSendsTheIdsAsTheyLieAndEndsThePulseWith09) {
  ScriptedBus bus(R"(
    lock
    w8  0a0e 19        # entry 1, force, valid
    w32 0a00 0a000001
    w16 0a04 1234
    w16 0a06 0005
    w8  0a08 02
    w8  0a09 13
    w8  0a0a 24
    w8  0a0b 35
    w8  0a0c 46
    w8  0a0d 57
    r8  0a0f a7
    r8  0a0f a3
    w8  0a0f ad        # (a3 OR 0c) AND fd
    w8  0a0f 09
    unlock
    r8  0a0f a5 x2     # read done, not write done
    r8  0a0f 02
  )");
  EXPECT_EQ(PstWrite(1, kEntry), DriverStatus::kOk);
}

TEST(PppoeSession, AnySwitchValueCountsAsOne) {
  ScriptedBus bus(R"(
    lock
    w8  0a0e 3f        # entry 3, force, tag, used, valid
    w32 0a00 0a000001
    w16 0a04 1234
    w16 0a06 0005
    w8  0a08 02
    w8  0a09 13
    w8  0a0a 24
    w8  0a0b 35
    w8  0a0c 46
    w8  0a0d 57
    r8  0a0f 03
    r8  0a0f 40
    w8  0a0f 4c
    w8  0a0f 09
    unlock
    r8  0a0f 03
  )");
  PstEntry entry = kEntry;
  entry.force = 0x0F;
  entry.tag = 0x08;
  entry.used = 0x80;
  EXPECT_EQ(PstWrite(3, entry), DriverStatus::kOk);
}

TEST(PppoeSession, ABusyEngineStopsAWriteWithTheLockReleased) {
  for (const char* const command : {"01", "02"}) {
    const std::string transcript = std::string(R"(
      lock
      w8  0a0e 05      # tag, valid
      w32 0a00 0a000001
      w16 0a04 1234
      w16 0a06 0005
      w8  0a08 02
      w8  0a09 13
      w8  0a0a 24
      w8  0a0b 35
      w8  0a0c 46
      w8  0a0d 57
      r8  0a0f )") + command + "\n unlock";
    ScriptedBus bus(transcript.c_str());
    PstEntry entry = kEntry;
    entry.force = 0;
    entry.tag = 1;
    EXPECT_EQ(PstWrite(0, entry), DriverStatus::kNotReady);
  }
}

TEST(PppoeSession, DeleteReadsTheEntryThenClearsItsValidBit) {
  ScriptedBus bus(R"(
    w8  0a0e 20
    r8  0a0f 03
    r8  0a0f f3
    w8  0a0f f6
    r8  0a0f f6
    w8  0a0f f2
    r8  0a0f a1
    lock
    r8  0a0e a5        # the index is not stored again
    w8  0a0e a4
    r8  0a0f 03
    r8  0a0f 53
    w8  0a0f 5d        # (53 OR 0c) AND fd
    w8  0a0f 09
    unlock
    r8  0a0f 09
    r8  0a0f 0b
  )");
  EXPECT_EQ(PstDelete(2), DriverStatus::kOk);
}

TEST(PppoeSession, ADeleteMayFindTheEngineBusyTwice) {
  {
    ScriptedBus bus("w8 0a0e 00\n r8 0a0f 02");
    EXPECT_EQ(PstDelete(0), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    w8  0a0e 00
    r8  0a0f 03
    r8  0a0f 40
    w8  0a0f 44
    r8  0a0f 44
    w8  0a0f 40
    r8  0a0f 01
    lock
    r8  0a0e 0f
    w8  0a0e 0e
    r8  0a0f 01        # the read is done, writes are not ready
    unlock
  )");
  EXPECT_EQ(PstDelete(0), DriverStatus::kNotReady);
}

constexpr char kClearUpToTheWrite[] = R"(
    w8  0a0e 10
    r8  0a0f 03
    r8  0a0f 40
    w8  0a0f 44
    r8  0a0f 44
    w8  0a0f 40
    r8  0a0f 03
    r32 0a00 0a000001
    r16 0a04 1234
    r16 0a06 0005
    r8  0a08 02
    r8  0a09 13
    r8  0a0a 24
    r8  0a0b 35
    r8  0a0c 46
    r8  0a0d 57
    r8  0a0e 1a        # force, used, not valid
    lock
    w8  0a0e 19        # force, valid
    w32 0a00 0a000001
    w16 0a04 3412      # the bytes change places
    w16 0a06 0500
    w8  0a08 02
    w8  0a09 13
    w8  0a0a 24
    w8  0a0b 35
    w8  0a0c 46
    w8  0a0d 57
)";

TEST(PppoeSession, ClearDropsUsedSetsValidAndExchangesTheBytesOfTheIds) {
  const std::string transcript = std::string(kClearUpToTheWrite) + R"(
    r8  0a0f 03
    r8  0a0f 40
    w8  0a0f 4c
    w8  0a0f 09
    unlock
    r8  0a0f 0b
  )";
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(PstClear(1), DriverStatus::kOk);
}

TEST(PppoeSession, AClearIsRefusedWhereverTheEngineIsBusy) {
  {
    ScriptedBus bus("w8 0a0e 10\n r8 0a0f 01");
    EXPECT_EQ(PstClear(1), DriverStatus::kRefused);
  }
  const std::string transcript = std::string(kClearUpToTheWrite) + "r8 0a0f 01\n unlock";
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(PstClear(1), DriverStatus::kRefused);
}

TEST(PppoeSession, CtrlCEndsEachWait) {
  PressCtrlCInWaits(true);
  {
    ScriptedBus bus(R"(
      w8  0a0e 00
      r8  0a0f 03
      r8  0a0f 40
      w8  0a0f 44
      r8  0a0f 44
      w8  0a0f 40
      r8  0a0f 02 x100000
    )");
    const Outcome outcome = RunLine("pst 0");
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.output, "PST Read failed\n\r");
  }
  ScriptedBus bus(R"(
    lock
    w8  0a0e 01
    w32 0a00 0a000001
    w16 0a04 0002
    w16 0a06 0003
    w8  0a08 00
    w8  0a09 00
    w8  0a0a 00
    w8  0a0b 00
    w8  0a0c 00
    w8  0a0d 04
    r8  0a0f 03
    r8  0a0f 40
    w8  0a0f 4c
    w8  0a0f 09
    unlock
    r8  0a0f 09 x100000
  )");
  const Outcome outcome = RunLine("pst 0 = 10.0.0.1 2 3 4 0 0");
  PressCtrlCInWaits(false);
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "PST Write failed\n\r");
}

constexpr char kWriteOfEntry1[] = R"(
    lock
    w8  0a0e 19
    w32 0a00 0a000001
    w16 0a04 1234
    w16 0a06 0005
    w8  0a08 02
    w8  0a09 13
    w8  0a0a 24
    w8  0a0b 35
    w8  0a0c 46
    w8  0a0d 57
    r8  0a0f 03
    r8  0a0f 40
    w8  0a0f 4c
    w8  0a0f 09
    unlock
    r8  0a0f 0b
)";
constexpr char kBusyRead[] = "\n w8 0a0e 10\n r8 0a0f 02\n";

TEST(PppoeSession, AFailingReadBackHasItsOwnMessage) {
  {
    const std::string transcript = std::string(kWriteOfEntry1) + kBusyRead;
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome = RunLine("pst 1 = 10.0.0.1 1234 5 021324354657 1 0");
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.output, "PST Read failed\n\r");
  }
  {
    const std::string transcript = std::string(kClearUpToTheWrite) + R"(
      r8  0a0f 03
      r8  0a0f 40
      w8  0a0f 4c
      w8  0a0f 09
      unlock
      r8  0a0f 0b
    )" + kBusyRead;
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome = RunLine("pst c 1");
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.output, "PST Read failed\n\r");
  }
  const std::string transcript = std::string(R"(
    w8  0a0e 10
    r8  0a0f 03
    r8  0a0f 40
    w8  0a0f 44
    r8  0a0f 44
    w8  0a0f 40
    r8  0a0f 03
    lock
    r8  0a0e 1f
    w8  0a0e 1e
    r8  0a0f 03
    r8  0a0f 40
    w8  0a0f 4c
    w8  0a0f 09
    unlock
    r8  0a0f 0b
  )") + kBusyRead;
  ScriptedBus bus(transcript.c_str());
  const Outcome outcome = RunLine("pst d 1");
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "PST Read failed\n\r");
}

TEST(PppoeSession, RefusedWordsTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"pst 0 = 1.2.3.4 1 1 1 1 1", "pst d 0 1"},
                     {"pst",
                      "pst 4",
                      "pst 004",
                      "pst d",
                      "pst c",
                      "pst d 4",
                      "pst c 4",
                      "pst d 0 100",
                      "pst c 0 g",
                      "pst d 0 1 1",
                      "pst c 0 1 1",
                      "pst 0 100",
                      "pst 0 1 1",
                      "pst 0 =",
                      "pst 0 = 10.0.0.1 2 3 4 0",
                      "pst 0 = 10.0.0.1 2 3 4 0 0 0",
                      "pst 4 = 10.0.0.1 2 3 4 0 0",
                      "pst 0 : 10.0.0.1 2 3 4 0 0",
                      "pst 0 = 10.0.0 2 3 4 0 0",
                      "pst 0 = 10.0.0.1 12345 3 4 0 0",
                      "pst 0 = 10.0.0.1 2 00003 4 0 0",
                      "pst 0 = 10.0.0.1 2 3 0200000000010 0 0",
                      "pst 0 = 10.0.0.1 2 3 4 00 0",
                      "pst 0 = 10.0.0.1 2 3 4 0 true"});
}

}  // namespace
}  // namespace monitor
