#include "system/gpio.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

TEST(Gpio, DataAndStatusAreOneAccessEach) {
  ScriptedBus bus(R"(
    r8 0221 a5
    r8 0222 5a
    lock
    w8 0221 12
    unlock
    lock
    w8 0222 34
    unlock
  )");
  std::uint8_t value = 0;
  EXPECT_EQ(GpioDataRead(value), DriverStatus::kOk);
  EXPECT_EQ(value, 0xA5);
  EXPECT_EQ(GpioStatusRead(value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x5A);
  EXPECT_EQ(GpioDataWrite(0x12), DriverStatus::kOk);
  EXPECT_EQ(GpioStatusWrite(0x34), DriverStatus::kOk);
}

TEST(Gpio, ConfigurationGoesDirectionEnableSettingTrigger) {
  ScriptedBus bus(R"(
    r8 0220 11
    r8 0224 22
    r8 0223 33
    r8 0225 44
    lock
    w8 0220 55
    w8 0224 66
    w8 0223 77
    w8 0225 88
    unlock
  )");
  GpioConfig config{};
  EXPECT_EQ(GpioConfigRead(config), DriverStatus::kOk);
  EXPECT_EQ(config.direction, 0x11);
  EXPECT_EQ(config.enable, 0x22);
  EXPECT_EQ(config.setting, 0x33);
  EXPECT_EQ(config.trigger, 0x44);
  EXPECT_EQ(GpioConfigWrite({.direction = 0x55, .enable = 0x66, .setting = 0x77, .trigger = 0x88}),
            DriverStatus::kOk);
}

TEST(GpioConfigCommand, ShowsTheSettingBeforeTheEnable) {
  ScriptedBus bus(R"(
    r8 0220 01
    r8 0224 03
    r8 0223 02
    r8 0225 f4
  )");
  const Outcome outcome = RunLine("gpiocfg");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "DIR:  1\tSETTING:  2\tENABLE:  3\tTRIGGER: f4\n\r");
}

TEST(GpioConfigCommand, TakesTheSettingBeforeTheEnableAndShowsWhatReadsBack) {
  ScriptedBus bus(R"(
    lock
    w8 0220 01
    w8 0224 03
    w8 0223 02
    w8 0225 04
    unlock
    r8 0220 a1
    r8 0224 a3
    r8 0223 a2
    r8 0225 a4
  )");
  const Outcome outcome = RunLine("gpiocfg = 1 2 3 4");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "DIR: a1\tSETTING: a2\tENABLE: a3\tTRIGGER: a4\n\r");
}

TEST(GpioConfigCommand, RefusesOtherWordsUntouched) {
  ScriptedBus bus("");
  ExpectLinesRefused(
      {"gpiocfg = 1 1 1 1", "gpio i = 1", "gpio = 1"},
      {"gpiocfg =", "gpiocfg 1", "gpiocfg = 1 2 3", "gpiocfg = 1 2 3 4 5", "gpiocfg 0 1 2 3 4",
       "gpiocfg = 100 2 3 4", "gpiocfg = 1 100 3 4", "gpiocfg = 1 2 100 4", "gpiocfg = 1 2 3 100",
       "gpiocfg = g 2 3 4", "gpiocfg = 1 g 3 4", "gpiocfg = 1 2 g 4", "gpiocfg = 1 2 3 g"});
}

TEST(GpioCommand, DataIsPaddedWithASpace) {
  ScriptedBus bus("r8 0221 05\n r8 0221 f5");
  EXPECT_EQ(RunLine("gpio").output, "DATA:  5\n\r");
  const Outcome outcome = RunLine("gpio");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "DATA: f5\n\r");
}

TEST(GpioCommand, DataIsShownAsItReadsBack) {
  ScriptedBus bus("lock\n w8 0221 05\n unlock\n r8 0221 a0");
  const Outcome outcome = RunLine("gpio = 5");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "DATA: a0\n\r");
}

TEST(GpioCommand, StatusIsPaddedWithAZero) {
  ScriptedBus bus("r8 0222 00\n r8 0222 a5");
  EXPECT_EQ(RunLine("gpio i").output, "STATUS: 00\n\r");
  const Outcome outcome = RunLine("gpio i");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "STATUS: a5\n\r");
}

TEST(GpioCommand, StatusIsShownAsItReadsBack) {
  ScriptedBus bus("lock\n w8 0222 ff\n unlock\n r8 0222 0a");
  const Outcome outcome = RunLine("gpio i = ff");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "STATUS: 0a\n\r");
}

TEST(GpioCommand, RefusesOtherWordsUntouched) {
  ScriptedBus bus("");
  ExpectLinesRefused(
      {"gpiocfg = 1 1 1 1", "gpio i = 1", "gpio = 1"},
      {"gpio =", "gpio 5", "gpio ii", "gpio = 100", "gpio = g", "gpio i 5", "gpio i =", "gpio 0 5",
       "gpio i = 100", "gpio i = g", "gpio = = 5", "gpio i 1 5", "gpio i = 5 5"});
}

}  // namespace
}  // namespace monitor
