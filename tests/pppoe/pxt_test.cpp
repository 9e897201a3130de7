#include "pppoe/pxt.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

constexpr MacAddress kInternalMac{0x02, 0x13, 0x24, 0x35, 0x46, 0x57};
constexpr MacAddress kExternalMac{0x0A, 0x1B, 0x2C, 0x3D, 0x4E, 0x5F};

constexpr PxtEntry kEntry{.internalMac = kInternalMac,
                          .externalMac = kExternalMac,
                          .internalSessionId = {0x11, 0x12},
                          .externalSessionId = {0x13, 0x14},
                          .internalVlanId = {0x15, 0x16},
                          .externalVlanId = {0x17, 0x18},
                          .internalForce = 1,
                          .internalTag = 0,
                          .internalUsed = 1,
                          .externalForce = 0,
                          .externalTag = 1,
                          .externalUsed = 0,
                          .port = 2,
                          .valid = 0};

constexpr char kReadMacs[] = R"(
    r8  0a20 02
    r8  0a21 13
    r8  0a22 24
    r8  0a23 35
    r8  0a24 46
    r8  0a25 57
    r8  0a28 0a
    r8  0a29 1b
    r8  0a2a 2c
    r8  0a2b 3d
    r8  0a2c 4e
    r8  0a2d 5f
)";
constexpr char kReadIds[] = R"(
    r16 0a30 1112
    r16 0a32 1314
    r16 0a34 1516
    r16 0a36 1718
)";
constexpr char kWriteMacs[] = R"(
    w8  0a20 02
    w8  0a21 13
    w8  0a22 24
    w8  0a23 35
    w8  0a24 46
    w8  0a25 57
    w8  0a28 0a
    w8  0a29 1b
    w8  0a2a 2c
    w8  0a2b 3d
    w8  0a2c 4e
    w8  0a2d 5f
)";
constexpr char kWriteIds[] = R"(
    w16 0a30 1112
    w16 0a32 1314
    w16 0a34 1516
    w16 0a36 1718
)";
constexpr char kReadPulse[] = R"(
    r8  0a3a 03
    r8  0a3a 40
    w8  0a3a 44
    r8  0a3a 44
    w8  0a3a 40
    r8  0a3a 03
)";
constexpr char kWritePulse[] = R"(
    r8  0a3a 03
    r8  0a3a 40
    w8  0a3a 4c
    w8  0a3a 09
    unlock
    r8  0a3a 0b
)";

std::string Join(std::initializer_list<const char*> parts) {
  std::string text;
  for (const char* const part : parts) text.append(part).append("\n");
  return text;
}

TEST(Pxt, ReadStoresTheIndexPulsesTheEngineAndLoadsTheEntry) {
  const std::string transcript = Join({R"(
    w8  0a39 30
    r8  0a3a a3        # ready
    r8  0a3a ab
    w8  0a3a a6        # (ab OR 04) AND f6
    r8  0a3a a7
    w8  0a3a a3        # start cleared
    r8  0a3a a2 x3     # not done
    r8  0a3a 01
  )",
                                       kReadMacs, kReadIds, R"(
    r8  0a38 ad        # internal used and tag, external force; bits 3 and 7 are unused
    r8  0a39 be        # port 2, not valid; junk between
  )"});
  ScriptedBus bus(transcript.c_str());
  PxtEntry entry{};
  EXPECT_EQ(PxtRead(3, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.internalMac, kInternalMac);
  EXPECT_EQ(entry.externalMac, kExternalMac);
  EXPECT_EQ(IdToNumber(entry.internalSessionId), 0x1112);
  EXPECT_EQ(IdToNumber(entry.externalSessionId), 0x1314);
  EXPECT_EQ(IdToNumber(entry.internalVlanId), 0x1516);
  EXPECT_EQ(IdToNumber(entry.externalVlanId), 0x1718);
  EXPECT_EQ(entry.internalUsed, 1);
  EXPECT_EQ(entry.internalForce, 0);
  EXPECT_EQ(entry.internalTag, 1);
  EXPECT_EQ(entry.externalUsed, 0);
  EXPECT_EQ(entry.externalForce, 1);
  EXPECT_EQ(entry.externalTag, 0);
  EXPECT_EQ(entry.port, 2);
  EXPECT_EQ(entry.valid, 0);
}

TEST(Pxt, ReadOfTheOtherSwitches) {
  const std::string transcript = Join({"w8 0a39 00", kReadPulse, kReadMacs, kReadIds, R"(
    r8  0a38 52        # internal force, external used and tag
    r8  0a39 41        # port 1, valid
  )"});
  ScriptedBus bus(transcript.c_str());
  PxtEntry entry{};
  EXPECT_EQ(PxtRead(0, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.internalUsed, 0);
  EXPECT_EQ(entry.internalForce, 1);
  EXPECT_EQ(entry.internalTag, 0);
  EXPECT_EQ(entry.externalUsed, 1);
  EXPECT_EQ(entry.externalForce, 0);
  EXPECT_EQ(entry.externalTag, 1);
  EXPECT_EQ(entry.port, 1);
  EXPECT_EQ(entry.valid, 1);
}

TEST(Pxt, ABusyEngineStopsAReadAfterTheIndex) {
  for (const char* const command : {"00", "01", "02", "fc"}) {
    const std::string transcript = std::string("w8 0a39 20\n r8 0a3a ") + command;
    ScriptedBus bus(transcript.c_str());
    PxtEntry entry{};
    EXPECT_EQ(PxtRead(2, entry), DriverStatus::kNotReady);
  }
}

TEST(Pxt, IndicesAbove3AreRefusedUntouched) {
  ScriptedBus bus("");
  PxtEntry entry = kEntry;
  EXPECT_EQ(PxtRead(4, entry), DriverStatus::kRefused);
  EXPECT_EQ(PxtWrite(4, entry), DriverStatus::kRefused);
  EXPECT_EQ(PxtDelete(4), DriverStatus::kRefused);
  EXPECT_EQ(PxtSetUsed(4, 1, 1), DriverStatus::kRefused);
}

TEST(Pxt, WriteStoresTheIndexLastAndEndsThePulseWith09) {
  const std::string transcript = Join({"lock", kWriteMacs, kWriteIds, R"(
    w8  0a38 43        # internal used and force, external tag
    w8  0a39 91        # port 2, entry 1, valid
    r8  0a3a a7
    r8  0a3a a3
    w8  0a3a ad        # (a3 OR 0c) AND fd
    w8  0a3a 09
    unlock
    r8  0a3a a5 x2     # read done, not write done
    r8  0a3a 02
  )"});
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(PxtWrite(1, kEntry), DriverStatus::kOk);
}

TEST(Pxt, WriteCutsThePortAndTakesAnySwitchValueAsOne) {
  const std::string transcript = Join({"lock", kWriteMacs, kWriteIds, R"(
    w8  0a38 34        # internal tag, external used and force
    w8  0a39 71        # port 1, entry 3, valid
  )",
                                       kWritePulse});
  ScriptedBus bus(transcript.c_str());
  PxtEntry entry = kEntry;
  entry.internalUsed = 0;
  entry.internalForce = 0;
  entry.internalTag = 0x08;
  entry.externalUsed = 0x02;
  entry.externalForce = 0x80;
  entry.externalTag = 0;
  entry.port = 0xF5;
  EXPECT_EQ(PxtWrite(3, entry), DriverStatus::kOk);
}

TEST(Pxt, ABusyEngineStopsAWriteWithTheLockReleased) {
  for (const char* const busy : {"r8 0a3a 01", "r8 0a3a 02"}) {
    const std::string transcript =
        Join({"lock", kWriteMacs, kWriteIds, "w8 0a38 43\n w8 0a39 81", busy, "unlock"});
    ScriptedBus bus(transcript.c_str());
    EXPECT_EQ(PxtWrite(0, kEntry), DriverStatus::kNotReady);
  }
}

TEST(Pxt, DeleteReadsTheEntryThenClearsItsValidBit) {
  ScriptedBus bus(R"(
    w8  0a39 20
    r8  0a3a 03
    r8  0a3a f3
    w8  0a3a f6
    r8  0a3a f6
    w8  0a3a f2
    r8  0a3a a1
    lock
    r8  0a39 a5        # the index is not stored again
    w8  0a39 a4
    r8  0a3a 03
    r8  0a3a 53
    w8  0a3a 5d        # (53 OR 0c) AND fd
    w8  0a3a 09
    unlock
    r8  0a3a 09
    r8  0a3a 0b
  )");
  EXPECT_EQ(PxtDelete(2), DriverStatus::kOk);
}

TEST(Pxt, ADeleteMayFindTheEngineBusyTwice) {
  {
    ScriptedBus bus("w8 0a39 00\n r8 0a3a 02");
    EXPECT_EQ(PxtDelete(0), DriverStatus::kNotReady);
  }
  const std::string transcript = Join({"w8 0a39 00", kReadPulse, R"(
    lock
    r8  0a39 8f
    w8  0a39 8e
    r8  0a3a 01        # the read is done, writes are not ready
    unlock
  )"});
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(PxtDelete(0), DriverStatus::kNotReady);
}

TEST(Pxt, SetUsedChangesTheUsedBitsAndKeepsTheIds) {
  const std::string transcript = Join({"w8 0a39 10", kReadPulse, kReadMacs, kReadIds, R"(
    r8  0a38 76        # internal force and tag, external used, force and tag
    r8  0a39 90        # port 2, not valid
    lock
  )",
                                       kWriteMacs, kWriteIds, R"(
    w8  0a38 67        # internal used in place of external
    w8  0a39 91        # valid
  )",
                                       kWritePulse});
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(PxtSetUsed(1, 0x0F, 0), DriverStatus::kOk);
}

TEST(Pxt, SetUsedIsRefusedWhereverTheEngineIsBusy) {
  {
    ScriptedBus bus("w8 0a39 10\n r8 0a3a 01");
    EXPECT_EQ(PxtSetUsed(1, 0, 1), DriverStatus::kRefused);
  }
  const std::string transcript = Join({"w8 0a39 10", kReadPulse, kReadMacs, kReadIds, R"(
    r8  0a38 01
    r8  0a39 41
    lock
  )",
                                       kWriteMacs, kWriteIds, R"(
    w8  0a38 10
    w8  0a39 51
    r8  0a3a 01
    unlock
  )"});
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(PxtSetUsed(1, 0, 8), DriverStatus::kRefused);
}

TEST(Pxt, CtrlCEndsAReadThatNeverEnds) {
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    w8  0a39 00
    r8  0a3a 03
    r8  0a3a 40
    w8  0a3a 44
    r8  0a3a 44
    w8  0a3a 40
    r8  0a3a 02 x100000
  )");
  const Outcome outcome = RunLine("pxt c 0 = 1 1");
  PressCtrlCInWaits(false);
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "PXT Clear failed\n\r");
}

TEST(Pxt, AFailingReadBackHasItsOwnMessage) {
  constexpr char kBusyRead[] = "w8 0a39 10\n r8 0a3a 02\n";
  {
    const std::string transcript =
        Join({"lock", kWriteMacs, kWriteIds, "w8 0a38 62\n w8 0a39 51", kWritePulse, kBusyRead});
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome =
        RunLine("pxt 1 = 021324354657 0a1b2c3d4e5f 1112 1314 1516 1718 1 1 0 1 1");
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.output, "PXT Read failed\n\r");
  }
  {
    const std::string transcript =
        Join({"w8 0a39 10", kReadPulse, kReadMacs, kReadIds, "r8 0a38 00\n r8 0a39 00\n lock",
              kWriteMacs, kWriteIds, "w8 0a38 11\n w8 0a39 11", kWritePulse, kBusyRead});
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome = RunLine("pxt c 1 = 1 1");
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.output, "PXT Read failed\n\r");
  }
  const std::string transcript =
      Join({"w8 0a39 10", kReadPulse, "lock\n r8 0a39 d1\n w8 0a39 d0", kWritePulse, kBusyRead});
  ScriptedBus bus(transcript.c_str());
  const Outcome outcome = RunLine("pxt d 1");
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "PXT Read failed\n\r");
}

TEST(Pxt, RefusedWordsTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"pxt 0 = 1 1 1 1 1 1 1 1 1 1 1", "pxt c 0 = 1 1", "pxt d 0 1"},
                     {"pxt",
                      "pxt 4",
                      "pxt g",
                      "pxt 004",
                      "pxt d g",
                      "pxt c g = 1 1",
                      "pxt d",
                      "pxt d 4",
                      "pxt d 0 100",
                      "pxt d 0 1 1",
                      "pxt c 0",
                      "pxt c 0 = 1",
                      "pxt c 0 = 1 1 1",
                      "pxt c 4 = 1 1",
                      "pxt c 0 : 1 1",
                      "pxt c 0 = 10 1",
                      "pxt c 0 = 1 g",
                      "pxt 0 g",
                      "pxt 0 1 1",
                      "pxt 0 = 1 2 3 4 5 6 7 8 9 a",
                      "pxt 0 = 1 2 3 4 5 6 7 8 9 a b c",
                      "pxt 4 = 1 2 3 4 5 6 7 8 9 a b",
                      "pxt 0 : 1 2 3 4 5 6 7 8 9 a b",
                      "pxt 0 = 0200000000010 2 3 4 5 6 7 8 9 a b",
                      "pxt 0 = 1 x 3 4 5 6 7 8 9 a b",
                      "pxt 0 = 1 2 12345 4 5 6 7 8 9 a b",
                      "pxt 0 = 1 2 3 12345 5 6 7 8 9 a b",
                      "pxt 0 = 1 2 3 4 12345 6 7 8 9 a b",
                      "pxt 0 = 1 2 3 4 5 12345 7 8 9 a b",
                      "pxt 0 = 1 2 3 4 5 6 77 8 9 a b",
                      "pxt 0 = 1 2 3 4 5 6 7 88 9 a b",
                      "pxt 0 = 1 2 3 4 5 6 7 8 99 a b",
                      "pxt 0 = 1 2 3 4 5 6 7 8 9 aa b",
                      "pxt 0 = 1 2 3 4 5 6 7 8 9 a dmz"});
}

}  // namespace
}  // namespace monitor
