#include "system/timer.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

TEST(Timer, ReadsAreOneLoadOfEachRegister) {
  ScriptedBus bus(R"(
    r16 0200 1234
    r16 0202 5678
    r16 0204 9abc
    r16 0208 4321
    r16 020a 8765
    r16 020c cba9
  )");
  std::uint16_t counter = 0;
  std::uint16_t load = 0;
  std::uint16_t divisor = 0;
  EXPECT_EQ(TimerCounterRead(0, counter), DriverStatus::kOk);
  EXPECT_EQ(TimerConfigRead(0, load, divisor), DriverStatus::kOk);
  EXPECT_EQ(counter, 0x1234);
  EXPECT_EQ(load, 0x5678);
  EXPECT_EQ(divisor, 0x9ABC);
  EXPECT_EQ(TimerCounterRead(1, counter), DriverStatus::kOk);
  EXPECT_EQ(TimerConfigRead(1, load, divisor), DriverStatus::kOk);
  EXPECT_EQ(counter, 0x4321);
  EXPECT_EQ(load, 0x8765);
  EXPECT_EQ(divisor, 0xCBA9);
}

TEST(Timer, ConfigurationIsWrittenInOneBracket) {
  ScriptedBus bus(R"(
    lock
    w16 0202 1234
    w16 0204 5678
    unlock
    lock
    w16 020a 9abc
    w16 020c def0
    unlock
  )");
  EXPECT_EQ(TimerConfigWrite(0, 0x1234, 0x5678), DriverStatus::kOk);
  EXPECT_EQ(TimerConfigWrite(1, 0x9ABC, 0xDEF0), DriverStatus::kOk);
}

TEST(Timer, AStartClearsStopAndPauseOfThatTimerOnly) {
  ScriptedBus bus(R"(
    lock
    r8 020e ff
    w8 020e fa
    unlock
    lock
    r8 020e ff
    w8 020e f5
    unlock
  )");
  EXPECT_EQ(TimerStart(0), DriverStatus::kOk);
  EXPECT_EQ(TimerStart(1), DriverStatus::kOk);
}

TEST(Timer, AStopSetsOneBit) {
  ScriptedBus bus(R"(
    lock
    r8 020e a4
    w8 020e a5
    unlock
    lock
    r8 020e a4
    w8 020e a6
    unlock
  )");
  EXPECT_EQ(TimerStop(0), DriverStatus::kOk);
  EXPECT_EQ(TimerStop(1), DriverStatus::kOk);
}

TEST(Timer, APauseSetsOneBit) {
  ScriptedBus bus(R"(
    lock
    r8 020e a1
    w8 020e a5
    unlock
    lock
    r8 020e a1
    w8 020e a9
    unlock
  )");
  EXPECT_EQ(TimerPause(0), DriverStatus::kOk);
  EXPECT_EQ(TimerPause(1), DriverStatus::kOk);
}

TEST(Timer, ATestStartsTheTimerAndDrivesThePinsInOneBracket) {
  ScriptedBus bus(R"(
    lock
    r8 020e a5
    w8 020e a0
    w8 0221 ff
    unlock
    lock
    r8 020e 5a
    w8 020e 50
    w8 0221 ff
    unlock
  )");
  EXPECT_EQ(TimerTest(0), DriverStatus::kOk);
  EXPECT_EQ(TimerTest(1), DriverStatus::kOk);
}

TEST(Timer, TimersAbove1AreRefusedUntouched) {
  ScriptedBus bus("");
  for (const unsigned timer : {2U, 255U}) {
    std::uint16_t value = 0x5555;
    std::uint16_t other = 0xAAAA;
    EXPECT_EQ(TimerCounterRead(timer, value), DriverStatus::kRefused);
    EXPECT_EQ(TimerConfigRead(timer, value, other), DriverStatus::kRefused);
    EXPECT_EQ(TimerConfigWrite(timer, 1, 2), DriverStatus::kRefused);
    EXPECT_EQ(TimerStart(timer), DriverStatus::kRefused);
    EXPECT_EQ(TimerStop(timer), DriverStatus::kRefused);
    EXPECT_EQ(TimerPause(timer), DriverStatus::kRefused);
    EXPECT_EQ(TimerTest(timer), DriverStatus::kRefused);
    EXPECT_EQ(value, 0x5555);
    EXPECT_EQ(other, 0xAAAA);
  }
}

TEST(TimerCommand, ShowsAllOfTimer0BeforeTimer1) {
  ScriptedBus bus(R"(
    r16 0200 0001
    r16 0202 0020
    r16 0204 0300
    r16 0208 4000
    r16 020a 0abc
    r16 020c ffff
  )");
  const Outcome outcome = RunLine("timer");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "T0 COUNTER: 0001\tT0 LOAD VALUE: 0020\tT0 DIVISOR: 0300\n\r"
            "T1 COUNTER: 4000\tT1 LOAD VALUE: 0abc\tT1 DIVISOR: ffff\n\r");
}

TEST(TimerCommand, AWriteShowsWhatWasTypedAndReadsNothingBack) {
  ScriptedBus bus(R"(
    lock
    w16 020a 0100
    w16 020c 0004
    unlock
  )");
  const Outcome outcome = RunLine("timer 1 = 100 4");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "T1 LOAD VALUE: 0100\tT1 DIVISOR : 0004\n\r");
}

TEST(TimerCommand, ActionsAnswerWithoutALineEnd) {
  ScriptedBus bus(R"(
    lock
    r8 020e f5
    w8 020e f0
    unlock
    lock
    r8 020e f0
    w8 020e f2
    unlock
    lock
    r8 020e f2
    w8 020e f6
    unlock
    lock
    r8 020e fe
    w8 020e f4
    w8 0221 ff
    unlock
  )");
  EXPECT_EQ(RunLine("timer 0 r").output, "T0 IS START");
  EXPECT_EQ(RunLine("timer 1 s").output, "T1 IS STOP");
  EXPECT_EQ(RunLine("timer 0 p").output, "T0 IS PAUSE");
  const Outcome outcome = RunLine("timer 1 t");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "T1 IS TEST");
}

TEST(TimerCommand, RefusesOtherWordsUntouched) {
  ScriptedBus bus("");
  ExpectLinesRefused(
      {"timer 0 = 1 1", "timer 0 p"},
      {"timer 0", "timer r", "timer 2 r", "timer 00 r", "timer 0x0 r", "timer 0 x", "timer 0 rr",
       "timer 0 = 1", "timer 0 1 2 3", "timer 2 = 1 2", "timer 01 = 1 2", "timer 0 = 12345 1",
       "timer 0 = 1 12345", "timer 0 = g 1", "timer 0 = 1 g", "timer 0 = = 1", "timer 0 = 1 2 3"});
}

}  // namespace
}  // namespace monitor
