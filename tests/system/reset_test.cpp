#include "system/reset.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "classifier/same_rule.h"
#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

TEST(Reset, AHardwareResetPulsesBit0ThenRunsItsSequenceWithTheLockReleased) {
  ScriptedBus bus(R"(
    lock
    r8 0100 a4
    w8 0100 a5
    r8 0100 a3
    w8 0100 a2
    r8 0100 a2 x3      # not done
    r8 0100 a6
    unlock
    r8 0240 25
    w8 0240 e5
    w8 0241 00
    w8 0241 c0
    r8 0250 a5
    w8 0250 b5
    r8 0251 a5
    w8 0251 a5
    r8 0251 5a x1000000
    r8 0251 a5
    w8 0251 b5
  )");
  EXPECT_EQ(ResetHardware(), DriverStatus::kOk);
}

TEST(Reset, ACpuResetPulsesBit5AndEndsThere) {
  ScriptedBus bus(R"(
    lock
    r8 0100 84
    w8 0100 a4
    r8 0100 f3
    w8 0100 d3
    r8 0100 04
    unlock
  )");
  EXPECT_EQ(ResetCpu(), DriverStatus::kOk);
}

TEST(Reset, ACpuAndChipSelectResetPulsesBit4AndEndsThere) {
  ScriptedBus bus(R"(
    lock
    r8 0100 a5
    w8 0100 b5
    r8 0100 b1
    w8 0100 a1
    r8 0100 ff
    unlock
  )");
  EXPECT_EQ(ResetCpuAndChipSelect(), DriverStatus::kOk);
}

TEST(Reset, TheDoneBitMayRiseInTheLastOf10001Loads) {
  ScriptedBus bus(R"(
    lock
    r8 0100 04
    w8 0100 24
    r8 0100 20
    w8 0100 00
    r8 0100 fb x10000
    r8 0100 04
    unlock
  )");
  EXPECT_EQ(ResetCpu(), DriverStatus::kOk);
}

TEST(Reset, ADoneBitThatDoesNotRiseIsRefusedWithTheLockReleasedAndNoSequence) {
  const std::string not_done = "r8 0100 fb x10001\n unlock\n";
  {
    ScriptedBus bus(
        ("lock\n r8 0100 a4\n w8 0100 a5\n r8 0100 a1\n w8 0100 a0\n" + not_done).c_str());
    EXPECT_EQ(ResetHardware(), DriverStatus::kRefused);
  }
  {
    ScriptedBus bus(
        ("lock\n r8 0100 84\n w8 0100 a4\n r8 0100 a0\n w8 0100 80\n" + not_done).c_str());
    EXPECT_EQ(ResetCpu(), DriverStatus::kRefused);
  }
  ScriptedBus bus(
      ("lock\n r8 0100 a4\n w8 0100 b4\n r8 0100 b0\n w8 0100 a0\n" + not_done).c_str());
  EXPECT_EQ(ResetCpuAndChipSelect(), DriverStatus::kRefused);
}

TEST(Reset, DoneIsBit2) {
  ScriptedBus bus("r8 0100 fb\n r8 0100 04");
  std::uint8_t done = 9;
  EXPECT_EQ(ResetDoneRead(done), DriverStatus::kOk);
  EXPECT_EQ(done, 0);
  EXPECT_EQ(ResetDoneRead(done), DriverStatus::kOk);
  EXPECT_EQ(done, 1);
}

TEST(Reset, TheModelIsReadInTwoHalvesAfterTheRevision) {
  ScriptedBus bus(R"(
    r8  0101 03
    r16 0102 12ff      # bits 15 to 8 count
    r16 0102 ff34      # bits 7 to 0 count
  )");
  std::uint8_t revision = 0;
  std::uint16_t model = 0;
  EXPECT_EQ(ChipIdRead(revision, model), DriverStatus::kOk);
  EXPECT_EQ(revision, 3);
  EXPECT_EQ(model, 0x1234);
}

TEST(Reset, DrainingTheConsoleFlushesItAndTouchesNothing) {
  ScriptedBus bus("");
  (void)TakeFlushes();
  EXPECT_EQ(ConsoleDrain(), 1);
  EXPECT_EQ(TakeFlushes(), 1U);
}

TEST(ResetCommand, ShowsTheDoneBitWithOneLoad) {
  ScriptedBus bus("r8 0100 04\n r8 0100 fb");
  EXPECT_EQ(RunLine("reset").output, "RESET DONE!\n\r");
  const Outcome outcome = RunLine("reset");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "RESET IS NOT DONE!\n\r");
}

TEST(ResetCommand, AnnouncesAndFlushesAndIgnoresATimeOut) {
  (void)TakeFlushes();
  const std::string not_done = "r8 0100 00 x10001\n unlock\n";
  {
    ScriptedBus bus(
        ("lock\n r8 0100 00\n w8 0100 01\n r8 0100 01\n w8 0100 00\n" + not_done).c_str());
    const Outcome outcome = RunLine("reset hw");
    EXPECT_EQ(outcome.result, kDone);
    EXPECT_EQ(outcome.output, "RESET HARDWARE\n\r");
    EXPECT_EQ(TakeFlushes(), 1U);
  }
  {
    ScriptedBus bus(
        ("lock\n r8 0100 00\n w8 0100 20\n r8 0100 20\n w8 0100 00\n" + not_done).c_str());
    const Outcome outcome = RunLine("reset cpu");
    EXPECT_EQ(outcome.result, kDone);
    EXPECT_EQ(outcome.output, "RESET CPU\n\r");
    EXPECT_EQ(TakeFlushes(), 1U);
  }
  ScriptedBus bus(
      ("lock\n r8 0100 00\n w8 0100 10\n r8 0100 10\n w8 0100 00\n" + not_done).c_str());
  const Outcome outcome = RunLine("reset cpucs");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "RESET CPU AND CHIP SELECT\n\r");
  EXPECT_EQ(TakeFlushes(), 1U);
}

/// What the command has handed to the output when it first touches the bus; after that it prints
/// nothing.
std::string FlushedBeforeThePulse(const std::string& line, const std::string& pulse) {
  ScriptedBus bus((pulse + "r8 0100 00 x10001\n unlock\n").c_str());
  std::string flushed;
  bus.BeforeNextEvent([&flushed] {
    EXPECT_EQ(UnflushedOutput(), 0U);
    flushed = TakeOutput();
  });
  EXPECT_EQ(RunLine(line).output, "") << line;
  return flushed;
}

TEST(ResetCommand, TheMessageIsOutBeforeThePulse) {
  EXPECT_EQ(FlushedBeforeThePulse("reset hw", R"(
              lock
              r8 0100 a4
              w8 0100 a5
              r8 0100 a5
              w8 0100 a4
            )"),
            "RESET HARDWARE\n\r");
  EXPECT_EQ(FlushedBeforeThePulse("reset cpu", R"(
              lock
              r8 0100 84
              w8 0100 a4
              r8 0100 a4
              w8 0100 84
            )"),
            "RESET CPU\n\r");
  EXPECT_EQ(FlushedBeforeThePulse("reset cpucs", R"(
              lock
              r8 0100 a4
              w8 0100 b4
              r8 0100 b4
              w8 0100 a4
            )"),
            "RESET CPU AND CHIP SELECT\n\r");
}

bool ShadowIsZero() {
  return std::all_of(ClsShadow.begin(), ClsShadow.end(),
                     [](const ClsRule& rule) { return SameRule(rule, {}); });
}

void FillShadow() { std::memset(ClsShadow.data(), 0x5A, sizeof(ClsShadow)); }

TEST(ResetCommand, AHardwareResetForgetsTheClassifierRules) {
  FillShadow();
  ScriptedBus bus(R"(
    lock
    r8 0100 a4
    w8 0100 a5
    r8 0100 a5
    w8 0100 a4
    r8 0100 a4         # done
    unlock
    r8 0240 25
    w8 0240 e5
    w8 0241 00
    w8 0241 c0
    r8 0250 a5
    w8 0250 b5
    r8 0251 a5
    w8 0251 a5
    r8 0251 5a x1000000
    r8 0251 a5
    w8 0251 b5
  )");
  EXPECT_EQ(RunLine("reset hw").result, kDone);
  EXPECT_TRUE(ShadowIsZero());
}

TEST(ResetCommand, AHardwareResetForgetsTheClassifierRulesEvenWhenItIsNotDone) {
  FillShadow();
  ScriptedBus bus(R"(
    lock
    r8 0100 a4
    w8 0100 a5
    r8 0100 a5
    w8 0100 a4
    r8 0100 a0 x10001
    unlock
  )");
  EXPECT_EQ(RunLine("reset hw").result, kDone);
  EXPECT_TRUE(ShadowIsZero());
}

TEST(ResetCommand, AResetOfTheCpuKeepsTheClassifierRules) {
  FillShadow();
  for (const char* const line : {"reset cpu", "reset cpucs"}) {
    const bool chip_select = std::string(line) == "reset cpucs";
    ScriptedBus bus(chip_select ? "lock\n r8 0100 04\n w8 0100 14\n r8 0100 14\n w8 0100 04\n"
                                  "r8 0100 04\n unlock"
                                : "lock\n r8 0100 04\n w8 0100 24\n r8 0100 24\n w8 0100 04\n"
                                  "r8 0100 04\n unlock");
    EXPECT_EQ(RunLine(line).result, kDone);
    EXPECT_EQ(ClsShadow[0].fieldMask, 0x5A5A) << line;
    EXPECT_EQ(ClsShadow[127].copyToCpu, 0x5A) << line;
  }
  ClsClearShadow();
}

TEST(ResetCommand, RefusesOtherWordsUntouched) {
  ScriptedBus bus("");
  ExpectLinesRefused({"reset hw"}, {"reset xyz", "reset h", "reset hwx", "reset cpuc",
                                    "reset hw hw", "reset =", "reset 0"});
}

TEST(VersionCommand, ShowsTheNibblesAsDigitsAndTheRevisionInDecimal) {
  ScriptedBus bus(R"(
    r8  0101 03
    r16 0102 1234
    r16 0102 1234
    r8  0101 ff
    r16 0102 ab00
    r16 0102 00cd
    r8  0101 0c
    r16 0102 ef99
    r16 0102 9909
  )");
  EXPECT_EQ(RunLine("version").output, "VBQ1234 Version  3\n\r");
  EXPECT_EQ(RunLine("version").output, "VBQ:;<= Version 255\n\r");
  const Outcome outcome = RunLine("version");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "VBQ>?09 Version 12\n\r");
}

TEST(VersionCommand, TakesNoArguments) {
  ScriptedBus bus("");
  EXPECT_EQ(RunLine("version 0").result, kUsage);
}

}  // namespace
}  // namespace monitor
