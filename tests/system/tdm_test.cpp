#include "system/tdm.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

TEST(Tdm, ReadAssemblesEachTimerFromTwoLoads) {
  ScriptedBus bus(R"(
    r16 0004 12ee
    r16 0004 ee34
    r16 0008 56ee
    r16 0008 ee78
    r8  000a a6        # bit 1
    r16 0004 0000 x2
    r16 0008 ffff x2
    r8  000a fd
  )");
  std::uint16_t on_timer = 0;
  std::uint16_t off_timer = 0;
  std::uint8_t auto_on = 9;
  EXPECT_EQ(TdmConfigRead(on_timer, off_timer, auto_on), DriverStatus::kOk);
  EXPECT_EQ(on_timer, 0x1234);
  EXPECT_EQ(off_timer, 0x5678);
  EXPECT_EQ(auto_on, 1);
  EXPECT_EQ(TdmConfigRead(on_timer, off_timer, auto_on), DriverStatus::kOk);
  EXPECT_EQ(on_timer, 0);
  EXPECT_EQ(off_timer, 0xFFFF);
  EXPECT_EQ(auto_on, 0);
}

TEST(Tdm, WriteStoresTheTimersOutsideTheLock) {
  ScriptedBus bus(R"(
    w16 0004 1234
    w16 0008 5678
    lock
    r8  000a a5
    w8  000a a7
    unlock
    w16 0004 0000
    w16 0008 ffff
    lock
    r8  000a a7
    w8  000a a5
    unlock
  )");
  EXPECT_EQ(TdmConfigWrite(0x1234, 0x5678, 0x80), DriverStatus::kOk);
  EXPECT_EQ(TdmConfigWrite(0, 0xFFFF, 0), DriverStatus::kOk);
}

TEST(Tdm, OnStoresTheWholeEnableByte) {
  ScriptedBus bus(R"(
    w8 0006 03
    r8 000a a4
    w8 000a a5
  )");
  EXPECT_EQ(TdmEnable(0x10), DriverStatus::kOk);
}

TEST(Tdm, OffClearsOnlyTheEnableBits) {
  ScriptedBus bus(R"(
    r8 0006 a7
    w8 0006 a4
    r8 000a a7
    w8 000a a6
  )");
  EXPECT_EQ(TdmEnable(0), DriverStatus::kOk);
}

TEST(Tdm, TheCommandWritesAndReadsBack) {
  ScriptedBus bus(R"(
    w16 0004 0010
    w16 0008 0020
    lock
    r8  000a 02
    w8  000a 00
    unlock
    r16 0004 0011 x2
    r16 0008 0abc x2
    r8  000a 02
    w16 0004 0010
    w16 0008 0020
    lock
    r8  000a 00
    w8  000a 02
    unlock
    r16 0004 0010 x2
    r16 0008 0020 x2
    r8  000a 00
  )");
  Outcome outcome = RunLine("tdmcfg = 10 20");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "TX ON TIMER :   11\tTX OFF TIMER :  abc\tAUTO ON: ENABLE\n\r");
  outcome = RunLine("tdmcfg = 10 20 auto");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "TX ON TIMER :   10\tTX OFF TIMER :   20\tAUTO ON: DISABLE\n\r");
}

TEST(Tdm, WhatDoesNotFitTouchesNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"tdmcfg = 1 1 auto", "tdm off"},
                     {"tdmcfg =", "tdmcfg = 10", "tdmcfg : 10 20", "tdmcfg = 12345 20",
                      "tdmcfg = 10 12345", "tdmcfg = x 20", "tdmcfg = 10 x", "tdmcfg = 10 20 x",
                      "tdmcfg = 10 20 auto auto", "tdm on", "tdm off off"});
}

}  // namespace
}  // namespace monitor
