#include "pppoe/pdr.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

constexpr PdrEntry kEntry{.ip = 0xC0A80109, .pppoe = 1, .sessionNumber = 2, .valid = 0};

TEST(Pdr, ReadStartsTheEngineWithoutAskingWhetherItIsReady) {
  ScriptedBus bus(R"(
    w8  0a14 3f
    r8  0a16 a8        # both ready bits clear
    w8  0a16 a4        # (a8 OR 04) AND f6
    r8  0a16 a7
    w8  0a16 a3
    r8  0a16 a2 x3     # not done
    r8  0a16 01
    r32 0a10 c0a80109
    r8  0a15 f9        # session 2, IPoE, valid; junk above
  )");
  PdrEntry entry{};
  EXPECT_EQ(PdrRead(0x3F, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.ip, 0xC0A80109U);
  EXPECT_EQ(entry.pppoe, 0);
  EXPECT_EQ(entry.sessionNumber, 2);
  EXPECT_EQ(entry.valid, 1);
}

TEST(Pdr, ReadOfTheOtherFlags) {
  ScriptedBus bus(R"(
    w8  0a14 00
    r8  0a16 40
    w8  0a16 44
    r8  0a16 44
    w8  0a16 40
    r8  0a16 03
    r32 0a10 01020304
    r8  0a15 06
  )");
  PdrEntry entry{};
  EXPECT_EQ(PdrRead(0, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.pppoe, 1);
  EXPECT_EQ(entry.sessionNumber, 1);
  EXPECT_EQ(entry.valid, 0);
}

TEST(Pdr, IndicesAbove63AreRefusedUntouched) {
  ScriptedBus bus("");
  PdrEntry entry = kEntry;
  EXPECT_EQ(PdrRead(64, entry), DriverStatus::kRefused);
  EXPECT_EQ(PdrWrite(64, entry), DriverStatus::kRefused);
  EXPECT_EQ(PdrDelete(64), DriverStatus::kRefused);
}

TEST(Pdr, WriteStoresTheIndexLastAndEndsThePulseWith09) {
  ScriptedBus bus(R"(
    lock
    w32 0a10 c0a80109
    w8  0a15 0b        # session 2, PPPoE, valid
    w8  0a14 05
    r8  0a16 a7
    r8  0a16 a3
    w8  0a16 ad        # (a3 OR 0c) AND fd
    w8  0a16 09
    unlock
    r8  0a16 a5 x2     # read done, not write done
    r8  0a16 02
  )");
  EXPECT_EQ(PdrWrite(5, kEntry), DriverStatus::kOk);
}

TEST(Pdr, WriteCutsTheSessionNumberToTwoBits) {
  ScriptedBus bus(R"(
    lock
    w32 0a10 c0a80109
    w8  0a15 0d        # session 3, IPoE, valid
    w8  0a14 3f
    r8  0a16 03
    r8  0a16 40
    w8  0a16 4c
    w8  0a16 09
    unlock
    r8  0a16 0b
  )");
  PdrEntry entry = kEntry;
  entry.pppoe = 0;
  entry.sessionNumber = 0xF7;
  EXPECT_EQ(PdrWrite(63, entry), DriverStatus::kOk);
}

TEST(Pdr, ABusyEngineStopsAWriteWithTheLockReleased) {
  for (const char* const command : {"01", "02"}) {
    const std::string transcript = std::string(R"(
      lock
      w32 0a10 c0a80109
      w8  0a15 0b      # any pppoe value counts as one
      w8  0a14 05
      r8  0a16 )") + command + "\n unlock";
    ScriptedBus bus(transcript.c_str());
    PdrEntry entry = kEntry;
    entry.pppoe = 0x0E;
    EXPECT_EQ(PdrWrite(5, entry), DriverStatus::kNotReady);
  }
}

TEST(Pdr, DeleteReadsTheEntryThenClearsItsValidBit) {
  ScriptedBus bus(R"(
    w8  0a14 09
    r8  0a16 03
    r8  0a16 f3
    w8  0a16 f6
    r8  0a16 f6
    w8  0a16 f2
    r8  0a16 a1
    lock
    r8  0a15 a5        # the index is not stored again
    w8  0a15 a4
    r8  0a16 03
    r8  0a16 53
    w8  0a16 5d        # (53 OR 0c) AND fd
    w8  0a16 09
    unlock
    r8  0a16 09
    r8  0a16 0b
  )");
  EXPECT_EQ(PdrDelete(9), DriverStatus::kOk);
}

TEST(Pdr, ADeleteMayFindTheEngineBusyTwice) {
  for (const char* const command : {"01", "02"}) {
    const std::string transcript = std::string("w8 0a14 09\n r8 0a16 ") + command;
    ScriptedBus bus(transcript.c_str());
    EXPECT_EQ(PdrDelete(9), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    w8  0a14 09
    r8  0a16 03
    r8  0a16 40
    w8  0a16 44
    r8  0a16 44
    w8  0a16 40
    r8  0a16 01
    lock
    r8  0a15 0f
    w8  0a15 0e
    r8  0a16 01        # the read is done, writes are not ready
    unlock
  )");
  EXPECT_EQ(PdrDelete(9), DriverStatus::kNotReady);
}

TEST(Pdr, CtrlCEndsAReadThatNeverEnds) {
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    w8  0a14 05
    r8  0a16 00
    w8  0a16 04
    r8  0a16 04
    w8  0a16 00
    r8  0a16 02 x100000
  )");
  const Outcome outcome = RunLine("pdr 5");
  PressCtrlCInWaits(false);
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "PDR Read failed\n\r");
}

// A read-back cannot find the engine busy, but it can be left waiting.
TEST(Pdr, AFailingReadBackHasItsOwnMessage) {
  constexpr char kReadWithoutEnd[] = R"(
    w8  0a14 05
    r8  0a16 40
    w8  0a16 44
    r8  0a16 44
    w8  0a16 40
    r8  0a16 02 x100000
  )";
  PressCtrlCInWaits(true);
  {
    const std::string transcript = std::string(R"(
      lock
      w32 0a10 c0a80109
      w8  0a15 0f
      w8  0a14 05
      r8  0a16 03
      r8  0a16 40
      w8  0a16 4c
      w8  0a16 09
      unlock
      r8  0a16 0b
    )") + kReadWithoutEnd;
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome = RunLine("pdr 5 = 192.168.1.9 1 7");
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.output, "PDR Read failed\n\r");
  }
  const std::string transcript = std::string(R"(
    w8  0a14 05
    r8  0a16 03
    r8  0a16 40
    w8  0a16 44
    r8  0a16 44
    w8  0a16 40
    r8  0a16 03
    lock
    r8  0a15 07
    w8  0a15 06
    r8  0a16 03
    r8  0a16 40
    w8  0a16 4c
    w8  0a16 09
    unlock
    r8  0a16 0b
  )") + kReadWithoutEnd;
  ScriptedBus bus(transcript.c_str());
  const Outcome outcome = RunLine("pdr d 5");
  PressCtrlCInWaits(false);
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "PDR Read failed\n\r");
}

// There is no form C: the word is index 0x0C.
TEST(Pdr, CIsAnIndex) {
  ScriptedBus bus(R"(
    w8  0a14 0c
    r8  0a16 40
    w8  0a16 44
    r8  0a16 44
    w8  0a16 40
    r8  0a16 03
    r32 0a10 01020304
    r8  0a15 00
  )");
  const Outcome outcome = RunLine("pdr c");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "INDEX:  c\tINVALID\n\rIP: 1.2.3.4         \tIPOE\tSESSION NO: 0\n\r\n\r");
}

TEST(Pdr, RefusedWordsTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"pdr 0 = 1.2.3.4 1 1", "pdr d 0 1"},
                     {"pdr", "pdr 40", "pdr 03f", "pdr g", "pdr d", "pdr d 40", "pdr d 0 100",
                      "pdr d 0 1 1", "pdr 0 x", "pdr 0 1 1", "pdr 0 = 1.2.3.4", "pdr 0 = 1.2.3.4 1",
                      "pdr 0 = 1.2.3.4 1 1 1", "pdr 40 = 1.2.3.4 1 1", "pdr 0 1 1.2.3.4 1 1",
                      "pdr 0 = 1.2.3.256 1 1", "pdr 0 = 1.2.3.4 01 1", "pdr 0 = 1.2.3.4 1 g"});
}

}  // namespace
}  // namespace monitor
