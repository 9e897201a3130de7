#include "core/engine.h"

#include <gtest/gtest.h>

#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

constexpr Reg8 kCommand{0x123};
constexpr EngineStep kRead{kCommand, 0x04, 0xF6, kEngineReadReady};
constexpr EngineStep kWrite{kCommand, 0x0C, 0xFD, kEngineWriteReady};

TEST(EngineSteps, SetAndClearTheBitsOfMostEngines) {
  constexpr EngineStep kReading = ReadStep(kCommand);
  EXPECT_EQ(kReading.command.offset, 0x123);
  EXPECT_EQ(kReading.set, 0x04);
  EXPECT_EQ(kReading.keep, 0xF6);
  EXPECT_EQ(kReading.done.Mask(), 0x01);
  EXPECT_EQ(kReading.start.Mask(), 0x04);
  EXPECT_FALSE(kReading.end.store);

  constexpr EngineStep kWriting = WriteStep(kCommand);
  EXPECT_EQ(kWriting.set, 0x0C);
  EXPECT_EQ(kWriting.keep, 0xFD);
  EXPECT_EQ(kWriting.done.Mask(), 0x02);
  EXPECT_EQ(kWriting.start.Mask(), 0x04);
}

TEST(EngineSteps, SetAndClearOtherBitsAsWell) {
  constexpr EngineStep kReading = ReadStep(kCommand, {.set = 0x20, .clear = 0x10});
  EXPECT_EQ(kReading.set, 0x24);
  EXPECT_EQ(kReading.keep, 0xE6);
  constexpr EngineStep kWriting = WriteStep(kCommand, {.set = 0x10, .clear = 0x40}, {}, {true, 9});
  EXPECT_EQ(kWriting.set, 0x1C);
  EXPECT_EQ(kWriting.keep, 0xBD);
  EXPECT_TRUE(kWriting.end.store);
  EXPECT_EQ(kWriting.end.value, 9);
}

TEST(EngineSteps, FollowTheFieldsOfAnEngine) {
  constexpr EngineFields kFields{
      .start = {7, 7}, .read_done = {1, 1}, .write_done = {2, 2}, .write = Field{5, 5}};
  constexpr EngineStep kReading = ReadStep(kCommand, {}, kFields);
  EXPECT_EQ(kReading.set, 0x80);
  EXPECT_EQ(kReading.keep, 0xDD);
  EXPECT_EQ(kReading.done.Mask(), 0x02);
  EXPECT_EQ(kReading.start.Mask(), 0x80);
  constexpr EngineStep kWriting = WriteStep(kCommand, {}, kFields);
  EXPECT_EQ(kWriting.set, 0xA0);
  EXPECT_EQ(kWriting.keep, 0xFB);
  EXPECT_EQ(kWriting.done.Mask(), 0x04);
}

class EngineHandshake : public testing::Test {
 protected:
  void SetUp() override { ClearConsole(); }
};

TEST_F(EngineHandshake, IsReadyWithBothReadyBits) {
  ScriptedBus bus(R"(
    r8 0123 fc
    r8 0123 fd
    r8 0123 fe
    r8 0123 03
    r8 0123 ff
  )");
  EXPECT_FALSE(EngineReady(kCommand));
  EXPECT_FALSE(EngineReady(kCommand));
  EXPECT_FALSE(EngineReady(kCommand));
  EXPECT_TRUE(EngineReady(kCommand));
  EXPECT_TRUE(EngineReady(kCommand));
}

// Each old value is a separate load, so that what the engine changes meanwhile is kept.
TEST_F(EngineHandshake, AReadStep) {
  ScriptedBus bus(R"(
    r8 0123 a3         # ready
    r8 0123 bb
    w8 0123 b6         # (bb OR 04) AND f6
    r8 0123 ff
    w8 0123 fb         # start cleared
    r8 0123 fe
    r8 0123 02
    r8 0123 01         # bit 0 ends it, whatever bit 1 says
  )");
  EXPECT_EQ(RunEngine(kRead), DriverStatus::kOk);
}

TEST_F(EngineHandshake, AWriteStep) {
  ScriptedBus bus(R"(
    r8 0123 43
    r8 0123 43
    w8 0123 4d         # (43 OR 0c) AND fd
    r8 0123 4d
    w8 0123 49
    r8 0123 49
    r8 0123 02
  )");
  EXPECT_EQ(RunEngine(kWrite), DriverStatus::kOk);
}

TEST_F(EngineHandshake, ABusyEngineIsNotStarted) {
  for (const char* const busy : {"r8 0123 fc", "r8 0123 01", "r8 0123 02"}) {
    ScriptedBus bus(busy);
    EXPECT_EQ(RunEngine(kRead), DriverStatus::kNotReady);
  }
}

TEST_F(EngineHandshake, AFixedStoreMayEndThePulse) {
  constexpr EngineStep kStep{.command = kCommand,
                             .set = 0x0C,
                             .keep = 0xFD,
                             .done = kEngineWriteReady,
                             .end = {.store = true, .value = 0x09}};
  ScriptedBus bus(R"(
    r8 0123 03
    r8 0123 f3
    w8 0123 fd
    w8 0123 09         # no load in between
    r8 0123 0b
  )");
  EXPECT_EQ(RunEngine(kStep), DriverStatus::kOk);
}

TEST_F(EngineHandshake, StartAndDoneMayBeOtherBits) {
  constexpr EngineStep kStep{
      .command = kCommand, .set = 0x20, .keep = 0x7F, .done = {7, 7}, .start = {5, 5}};
  ScriptedBus bus(R"(
    r8 0123 83
    w8 0123 23
    r8 0123 37
    w8 0123 17
    r8 0123 7f
    r8 0123 80
  )");
  PulseEngine(kStep);
  EXPECT_EQ(AwaitEngine(kStep), DriverStatus::kOk);
}

TEST_F(EngineHandshake, TheLockIsReleasedBeforeTheWait) {
  ScriptedBus bus(R"(
    lock
    r8 0123 03
    r8 0123 03
    w8 0123 0d
    r8 0123 0d
    w8 0123 09
    unlock
    r8 0123 09 x3
    r8 0123 0b
  )");
  IrqGuard lock;
  EXPECT_EQ(RunEngineUnlocking(kWrite, lock), DriverStatus::kOk);
}

TEST_F(EngineHandshake, ABusyEngineReleasesTheLock) {
  ScriptedBus bus("lock\n r8 0123 fe\n unlock");
  IrqGuard lock;
  EXPECT_EQ(RunEngineUnlocking(kWrite, lock), DriverStatus::kNotReady);
}

TEST_F(EngineHandshake, CtrlCEndsTheWaitForAHungEngine) {
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    lock
    r8 0123 03
    r8 0123 03
    w8 0123 0d
    r8 0123 0d
    w8 0123 09
    unlock
    r8 0123 09 x100000
  )");
  IrqGuard lock;
  EXPECT_EQ(RunEngineUnlocking(kWrite, lock), DriverStatus::kNotReady);
}

}  // namespace
}  // namespace monitor
