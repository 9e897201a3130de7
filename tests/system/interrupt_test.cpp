#include "system/interrupt.h"

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <string>

#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

/// Calls the command on words as the tokeniser leaves them; its result.
int Call(std::initializer_list<const char*> words) {
  static std::array<std::array<char, 33>, 8> slots;
  static std::array<char*, 8> argv;
  std::size_t argc = 0;
  for (const char* const word : words) {
    slots[argc][std::string(word).copy(slots[argc].data(), 32)] = '\0';
    argv[argc] = slots[argc].data();
    ++argc;
  }
  return InterruptCommand(static_cast<int>(argc), argv.data());
}

TEST(Interrupt, EachReadTakesItsHighByteFromTheFirstLoadAndItsLowByteFromTheSecond) {
  ScriptedBus bus(R"(
    r16 0210 12a5
    r16 0210 a534
    r16 0212 56a5
    r16 0212 a578
    r16 0214 9aa5
    r16 0214 a5bc
  )");
  std::uint16_t value = 0;
  EXPECT_EQ(IntStatusRead(value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x1234);
  EXPECT_EQ(IntGroupRead(value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x5678);
  EXPECT_EQ(IntMaskRead(value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x9ABC);
}

TEST(Interrupt, OnlyTheStatusIsWrittenUnderTheLock) {
  ScriptedBus bus(R"(
    lock
    w16 0210 0010
    unlock
    w16 0212 1234
    w16 0214 fffe
  )");
  EXPECT_EQ(IntStatusWrite(0x0010), DriverStatus::kOk);
  EXPECT_EQ(IntGroupWrite(0x1234), DriverStatus::kOk);
  EXPECT_EQ(IntMaskWrite(0xFFFE), DriverStatus::kOk);
}

TEST(Interrupt, TheCommandShowsTheThreeRegisters) {
  ScriptedBus bus(R"(
    r16 0210 0010
    r16 0210 0010
    r16 0212 a500
    r16 0212 0000
    r16 0214 ffff
    r16 0214 ffff
  )");
  (void)TakeOutput();
  EXPECT_EQ(Call({"int"}), kDone);
  EXPECT_EQ(TakeOutput(), "STATUS REG:  0010\n\rGROUP REG:  a500\n\rMASK REG:  ffff\n\r");
}

TEST(Interrupt, TheCommandWritesARegisterAndShowsWhatItHolds) {
  ScriptedBus bus(R"(
    lock
    w16 0210 0010
    unlock
    r16 0210 0020
    r16 0210 0020
    w16 0212 0abc
    r16 0212 0abc
    r16 0212 0abc
    w16 0214 0000
    r16 0214 0001
    r16 0214 0001
  )");
  (void)TakeOutput();
  EXPECT_EQ(Call({"int", "S", "=", "10"}), kDone);
  EXPECT_EQ(TakeOutput(), "STATUS REG:  0020\n\r");
  EXPECT_EQ(Call({"int", "G", "=", "0XABC"}), kDone);
  EXPECT_EQ(TakeOutput(), "GROUP REG:  0abc\n\r");
  EXPECT_EQ(Call({"int", "M", "=", "0"}), kDone);
  EXPECT_EQ(TakeOutput(), "MASK REG:  0001\n\r");
}

TEST(Interrupt, TheCommandRefusesOtherWordsUntouched) {
  ScriptedBus bus("");
  EXPECT_EQ(Call({"int", "S"}), kUsage);
  EXPECT_EQ(Call({"int", "S", "="}), kUsage);
  EXPECT_EQ(Call({"int", "S", "=", "10", "10"}), kUsage);
  EXPECT_EQ(Call({"int", "X", "=", "10"}), kUsage);
  EXPECT_EQ(Call({"int", "SG", "=", "10"}), kUsage);
  EXPECT_EQ(Call({"int", "S", ":", "10"}), kUsage);
  EXPECT_EQ(Call({"int", "S", "=", "12345"}), kUsage);
  EXPECT_EQ(Call({"int", "S", "=", "XYZ"}), kUsage);
  EXPECT_EQ(TakeOutput(), "");
}

}  // namespace
}  // namespace monitor
