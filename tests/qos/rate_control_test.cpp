#include "qos/rate_control.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

TEST(RateControl, WriteStoresBothWordsOfTheQueue) {
  ScriptedBus bus(R"(
    w16 0020 1234
    w16 0022 d678      # enabled; bit 15 is not the bucket's
    w16 002c 0001
    w16 002e 7fff
  )");
  EXPECT_EQ(WriteRateControl(0, {.cir = 0x1234, .cbs = 0x5678, .enable = 1}), DriverStatus::kOk);
  EXPECT_EQ(WriteRateControl(3, {.cir = 0x0001, .cbs = 0xFFFF, .enable = 0}), DriverStatus::kOk);
}

TEST(RateControl, ReadLoadsBothWordsOnce) {
  ScriptedBus bus(R"(
    r16 0024 fedc
    r16 0026 8001
    r16 0028 0000
    r16 002a 7fff
  )");
  RateControl rate{};
  EXPECT_EQ(ReadRateControl(1, rate), DriverStatus::kOk);
  EXPECT_EQ(rate.cir, 0xFEDC);
  EXPECT_EQ(rate.cbs, 0x0001);
  EXPECT_EQ(rate.enable, 1);
  EXPECT_EQ(ReadRateControl(2, rate), DriverStatus::kOk);
  EXPECT_EQ(rate.cir, 0);
  EXPECT_EQ(rate.cbs, 0x7FFF);
  EXPECT_EQ(rate.enable, 0);
}

TEST(RateControl, TheQueueIsNotChecked) {
  ScriptedBus bus("w16 0030 0005\n w16 0032 8006\n r16 0030 0005\n r16 0032 8006");
  RateControl rate{};
  EXPECT_EQ(WriteRateControl(4, {.cir = 5, .cbs = 6, .enable = 1}), DriverStatus::kOk);
  EXPECT_EQ(ReadRateControl(4, rate), DriverStatus::kOk);
}

TEST(RateControl, AWriteShowsWhatTheHardwareThenHolds) {
  ScriptedBus bus(R"(
    w16 0028 0010
    w16 002a 0020
    r16 0028 a5a5
    r16 002a 8021
  )");
  const Outcome outcome = RunLine("rc 2 = 10 20 disable");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "QUEUE  2 Rate Control: ENABLE\n\r"
            "  Committed Information Rate: a5a5\n\r"
            "  Committed Bucket Size:   21\n\r");
}

TEST(RateControl, RefusedWordsTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"rc 0 = 1 1 enable", "rc 0 1"},
                     {"rc", "rc 4", "rc 01", "rc g", "rc 0 100", "rc 0 x", "rc 0 1 2", "rc 0 = 10",
                      "rc 0 : 10 20", "rc 4 = 10 20", "rc 0 = 12345 20", "rc 0 = 10 12345",
                      "rc 0 = 10 20 off", "rc 0 = 10 20 enable 1", "rc 0 = g 20", "rc 0 = 10 g"});
}

}  // namespace
}  // namespace monitor
