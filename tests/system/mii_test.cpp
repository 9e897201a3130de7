#include "system/mii.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

TEST(Mii, ReadStrobesTheCommandAndPutsTheValueTogetherFromTwoLoads) {
  ScriptedBus bus(R"(
    r16 0408 5555      # ready
    r16 0408 a5a5      # discarded
    w16 0408 1fdf      # PHY 1f, start, read, register 1f
    w16 0408 1f5f      # start cleared
    r16 0408 6000      # ready and valid
    r16 0408 0000      # discarded
    r16 040c 12ee
    r16 040c ee34
  )");
  std::uint16_t value = 0;
  EXPECT_EQ(MiiRead(0x1F, 0x1F, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x1234);
}

TEST(Mii, ReadWaitsUntilTheInterfaceIsReadyAndTheDataValid) {
  ScriptedBus bus(R"(
    r16 0408 7fff
    r16 0408 ffff
    w16 0408 01c0
    w16 0408 0140
    r16 0408 9fff      # neither
    r16 0408 ffff      # the second load does not count
    r16 0408 dfff      # ready, not valid
    r16 0408 ffff
    r16 0408 bfff      # valid, not ready
    r16 0408 ffff
    r16 0408 7fff      # both
    r16 0408 9fff
    r16 040c 7809
    r16 040c 7809
  )");
  std::uint16_t value = 0;
  EXPECT_EQ(MiiRead(1, 0, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x7809);
}

TEST(Mii, ABusyInterfaceIsLeftAlone) {
  {
    ScriptedBus bus("r16 0408 bfff\n r16 0408 ffff");
    std::uint16_t value = 0x55;
    EXPECT_EQ(MiiRead(1, 0, value), DriverStatus::kNotReady);
    EXPECT_EQ(value, 0x55);
  }
  ScriptedBus bus("r16 0408 bfff\n r16 0408 ffff");
  EXPECT_EQ(MiiWrite(1, 0, 0x1234), DriverStatus::kNotReady);
}

TEST(Mii, AReadGivesUpAfterTenThousandFurtherLooks) {
  ScriptedBus bus(R"(
    r16 0408 4000 x2
    w16 0408 02c3
    w16 0408 0243
    r16 0408 4000 x2       # the first look
    r16 0408 4000 x20000   # ten thousand more, two loads each
  )");
  std::uint16_t value = 0x55;
  EXPECT_EQ(MiiRead(2, 3, value), DriverStatus::kNotReady);
  EXPECT_EQ(value, 0x55);
}

TEST(Mii, AReadMaySucceedInTheLastLook) {
  ScriptedBus bus(R"(
    r16 0408 4000 x2
    w16 0408 02c3
    w16 0408 0243
    r16 0408 4000 x20000
    r16 0408 6000 x2
    r16 040c abcd x2
  )");
  std::uint16_t value = 0;
  EXPECT_EQ(MiiRead(2, 3, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0xABCD);
}

TEST(Mii, WriteHoldsTheLockForTheSequenceAndWaitsAfterIt) {
  ScriptedBus bus(R"(
    r16 0408 4000
    r16 0408 0000
    lock
    w16 040a 1234
    w16 0408 04a4      # PHY 4, start, write, register 4
    w16 0408 0424
    unlock
    r16 0408 bfff      # not ready
    r16 0408 ffff
    r16 0408 4000      # valid does not matter
    r16 0408 0000
  )");
  EXPECT_EQ(MiiWrite(4, 4, 0x1234), DriverStatus::kOk);
}

TEST(Mii, AWriteGivesUpAfterTenThousandFurtherLooks) {
  ScriptedBus bus(R"(
    r16 0408 4000 x2
    lock
    w16 040a ffff
    w16 0408 1fbf
    w16 0408 1f3f
    unlock
    r16 0408 2000 x2       # the first look
    r16 0408 2000 x20000   # ten thousand more, two loads each
  )");
  EXPECT_EQ(MiiWrite(0x1F, 0x1F, 0xFFFF), DriverStatus::kNotReady);
}

TEST(Mii, AWriteMaySucceedInTheLastLook) {
  ScriptedBus bus(R"(
    r16 0408 4000 x2
    lock
    w16 040a 0000
    w16 0408 00a0
    w16 0408 0020
    unlock
    r16 0408 2000 x20000
    r16 0408 4000 x2
  )");
  EXPECT_EQ(MiiWrite(0, 0, 0), DriverStatus::kOk);
}

TEST(Mii, AddressesAndRegistersAbove31AreRefusedUntouched) {
  ScriptedBus bus("");
  std::uint16_t value = 0;
  EXPECT_EQ(MiiRead(32, 0, value), DriverStatus::kRefused);
  EXPECT_EQ(MiiRead(0, 32, value), DriverStatus::kRefused);
  EXPECT_EQ(MiiRead(0xFF, 0xFF, value), DriverStatus::kRefused);
  EXPECT_EQ(MiiWrite(32, 0, 0), DriverStatus::kRefused);
  EXPECT_EQ(MiiWrite(0, 32, 0), DriverStatus::kRefused);
}

TEST(Mii, TheCommandReadsBackWhatItWrites) {
  ScriptedBus bus(R"(
    r16 0408 4000 x2
    lock
    w16 040a 8000
    w16 0408 01a0
    w16 0408 0120
    unlock
    r16 0408 4000 x2
    r16 0408 4000 x2
    w16 0408 01c0
    w16 0408 0140
    r16 0408 6000 x2
    r16 040c 31ff
    r16 040c ff0a
  )");
  const Outcome outcome = RunLine("mii 1 0 = 8000");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "PHY: 0001\tREG: 0000\t VALUE: 310a\n\r");
}

TEST(Mii, AFailedWriteIsNotReadBack) {
  ScriptedBus bus("r16 0408 0000 x2");
  const Outcome outcome = RunLine("mii 1 0 = 8000");
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "MII Write failed\n\r");
}

TEST(Mii, AFailedReadBackFailsTheCommand) {
  ScriptedBus bus(R"(
    r16 0408 4000 x2
    lock
    w16 040a 0001
    w16 0408 01a0
    w16 0408 0120
    unlock
    r16 0408 4000 x2
    r16 0408 0000 x2
  )");
  const Outcome outcome = RunLine("mii 1 0 = 1");
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "MII Read failed\n\r");
}

TEST(Mii, WhatDoesNotFitTouchesNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"mii 1 0 = 1"}, {"mii", "mii 1", "mii 1 0 =", "mii 1 0 = 1 2", "mii 20 0",
                                       "mii 0 20", "mii 001 0", "mii g 0", "mii 0 g", "mii 1 0 : 1",
                                       "mii 1 0 = 12345", "mii 1 0 = g"});
}

}  // namespace
}  // namespace monitor
