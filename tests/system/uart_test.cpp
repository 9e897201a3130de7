#include "system/uart.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

TEST(Uart, EachReadableCodeIsOneLoad) {
  ScriptedBus bus(R"(
    r8 0300 11
    r8 0301 22
    r8 0302 33
    r8 0303 44
    r8 0305 55
    r8 0304 66
  )");
  std::uint8_t value = 0;
  EXPECT_EQ(UartRegRead(1, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x11);
  EXPECT_EQ(UartRegRead(4, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x22);
  EXPECT_EQ(UartRegRead(6, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x33);
  EXPECT_EQ(UartRegRead(8, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x44);
  EXPECT_EQ(UartRegRead(9, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x55);
  EXPECT_EQ(UartRegRead(10, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x66);
}

TEST(Uart, OtherCodesAreNotRead) {
  ScriptedBus bus("");
  std::uint8_t value = 0x77;
  for (const auto code : std::initializer_list<std::uint16_t>{0, 2, 3, 5, 7, 11, 0x0101, 0xFFFF}) {
    EXPECT_EQ(UartRegRead(code, value), DriverStatus::kRefused) << code;
  }
  EXPECT_EQ(value, 0x77);
}

TEST(Uart, PlainRegistersAreOneStore) {
  ScriptedBus bus(R"(
    w8 0300 81
    w8 0301 82
    w8 0302 83
    w8 0303 84
  )");
  EXPECT_EQ(UartRegWrite(2, 0x81), DriverStatus::kOk);
  EXPECT_EQ(UartRegWrite(4, 0x82), DriverStatus::kOk);
  EXPECT_EQ(UartRegWrite(7, 0x83), DriverStatus::kOk);
  EXPECT_EQ(UartRegWrite(8, 0x84), DriverStatus::kOk);
}

TEST(Uart, ModemControlAndReadOnlyCodesAreNotWritten) {
  ScriptedBus bus("");
  for (const auto code : std::initializer_list<std::uint16_t>{0, 1, 6, 9, 10, 11, 0x0102, 0xFFFF}) {
    EXPECT_EQ(UartRegWrite(code, 0x12), DriverStatus::kRefused) << code;
  }
}

TEST(Uart, AnOpenDivisorLatchIsStoredDirectly) {
  ScriptedBus bus(R"(
    r8 0303 a5
    w8 0300 12
    r8 0303 80
    w8 0301 34
  )");
  EXPECT_EQ(UartRegWrite(3, 0x12), DriverStatus::kOk);
  EXPECT_EQ(UartRegWrite(5, 0x34), DriverStatus::kOk);
}

TEST(Uart, AClosedDivisorLatchIsOpenedForTheStore) {
  ScriptedBus bus(R"(
    r8 0303 25        # closed
    lock
    r8 0303 5a        # loaded again for the OR
    w8 0303 da
    w8 0300 12
    r8 0303 ff
    w8 0303 7f
    unlock
    r8 0303 00
    lock
    r8 0303 00
    w8 0303 80
    w8 0301 34
    r8 0303 a5
    w8 0303 25
    unlock
  )");
  EXPECT_EQ(UartRegWrite(3, 0x12), DriverStatus::kOk);
  EXPECT_EQ(UartRegWrite(5, 0x34), DriverStatus::kOk);
}

TEST(Uart, ThePlainCommandLoadsInItsOwnOrder) {
  ScriptedBus bus(R"(
    r8 0300 0a
    r8 0301 0b
    r8 0302 c1
    r8 0303 03
    r8 0304 00
    r8 0305 60
  )");
  const Outcome outcome = RunLine("uart");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "RHR:  a\tIER:  b\tISR: c1\tLCR:  3\tMCR:  0\tLSR: 60\n\r");
}

TEST(Uart, TheCommandWritesByName) {
  ScriptedBus bus(R"(
    w8 0300 01
    w8 0301 02
    w8 0302 03
    w8 0303 04
    r8 0303 84
    w8 0300 05
    r8 0303 84
    w8 0301 06
  )");
  for (const char* const line : {"uart thr = 1", "uart ier = 2", "uart fcr = 3", "uart lcr = 4",
                                 "uart dll = 5", "uart dlh=6", "uart mcr = 7"}) {
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, kDone) << line;
    EXPECT_EQ(outcome.output, "") << line;
  }
}

TEST(Uart, WhatDoesNotFitTouchesNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"uart thr = 1"}, {"uart rhr = 1", "uart isr = 1", "uart lsr = 1",
                                        "uart thr : 1", "uart thr = 100", "uart thr = x",
                                        "uart thr", "uart thr =", "uart thr = 1 2"});
}

}  // namespace
}  // namespace monitor
