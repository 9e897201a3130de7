// The model's engine handshake by raw loads and stores of a command byte.
#include "chip/engine.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace chip {
namespace {

constexpr std::uint32_t kCommand = 0x60D;

/// An engine with the usual bits at the usual places, and what it was asked to do.
class TableEngine : public testing::Test {
 protected:
  void Store(std::uint8_t value) { registers_.Store(kCommand, 1, value); }
  std::uint8_t Load() { return static_cast<std::uint8_t>(registers_.Load(kCommand, 1)); }

  void TearDown() override { EXPECT_TRUE(registers_.Complaints().empty()); }

  RegisterFile registers_;
  std::vector<unsigned> operations_;
  Engine engine_{registers_, "table", monitor::Reg8{kCommand}, kTableEngineBits,
                 [this](std::uint8_t command) {
                   operations_.push_back(command);
                   return true;
                 }};
};

using Operations = std::vector<unsigned>;

TEST_F(TableEngine, IsReadyAtPowerOn) {
  EXPECT_STREQ(engine_.Name(), "table");
  EXPECT_EQ(Load(), 0x03);
  EXPECT_EQ(Load(), 0x03);
  EXPECT_EQ(operations_, Operations{});
}

TEST_F(TableEngine, AReadIsOverAtTheSecondLoad) {
  Store(0x06);
  EXPECT_EQ(Load(), 0x06);
  EXPECT_EQ(operations_, Operations{});
  Store(0x02);
  EXPECT_EQ(Load(), 0x03);
  EXPECT_EQ(operations_, Operations{0x06});
}

TEST_F(TableEngine, AWriteIsOverAtTheSecondLoad) {
  Store(0x0D);
  EXPECT_EQ(Load(), 0x0D);
  Store(0x09);
  EXPECT_EQ(Load(), 0x0B);
  EXPECT_EQ(operations_, Operations{0x0D});
}

TEST_F(TableEngine, APulseEndedWithoutALoadNeedsBothLoadsOfTheWait) {
  Store(0x0D);
  Store(0x09);
  EXPECT_EQ(Load(), 0x09);
  EXPECT_EQ(Load(), 0x0B);
}

TEST_F(TableEngine, AResetForgetsTheOperationButNotTheFault) {
  engine_.SetFault({.kind = Fault::Kind::kBusy});
  Store(0x0D);
  engine_.Reset();
  EXPECT_EQ(Load(), 0x00);
  engine_.SetFault({});
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Load(), 0x03);
  EXPECT_EQ(operations_, Operations{});
}

TEST_F(TableEngine, ReportsTheEndOfEachOperation) {
  unsigned ends = 0;
  engine_.on_end = [&] { ++ends; };
  for (const Fault::Kind kind : {Fault::Kind::kNone, Fault::Kind::kFail}) {
    engine_.SetFault({.kind = kind});
    ends = 0;
    Store(0x06);
    (void)Load();
    EXPECT_EQ(ends, 0U);
    (void)Load();
    EXPECT_EQ(ends, 1U);
    (void)Load();
    EXPECT_EQ(ends, 1U);
  }
  EXPECT_EQ(operations_, Operations{0x06});
}

TEST_F(TableEngine, EachStartRunsOnce) {
  Store(0x06);
  for (int i = 0; i < 10; ++i) (void)Load();
  EXPECT_EQ(operations_, Operations{0x06});
  Store(0x06);
  for (int i = 0; i < 10; ++i) (void)Load();
  EXPECT_EQ(operations_, (Operations{0x06, 0x06}));
}

TEST_F(TableEngine, AStartClearsTheDoneBitsThatItWritesAs0) {
  Store(0x07);
  EXPECT_EQ(Load(), 0x07);
  EXPECT_EQ(Load(), 0x07);
  Store(0x04);
  EXPECT_EQ(Load(), 0x04);
  EXPECT_EQ(Load(), 0x05);  // a read sets only its own
  Store(0x0C);
  EXPECT_EQ(Load(), 0x0C);
  EXPECT_EQ(Load(), 0x0E);
}

TEST_F(TableEngine, AStartDoesNotSetADoneBit) {
  Store(0x04);
  (void)Load();
  (void)Load();
  Store(0x07);  // the write is not done, though the store says so
  EXPECT_EQ(Load(), 0x05);
  EXPECT_EQ(Load(), 0x05);
}

TEST_F(TableEngine, StoresWithoutStartLeaveTheDoneBitsAlone) {
  Store(0x00);
  EXPECT_EQ(Load(), 0x03);
  Store(0x06);
  Store(0x03);
  EXPECT_EQ(Load(), 0x02);
  EXPECT_EQ(operations_, Operations{});
  EXPECT_EQ(Load(), 0x03);
}

TEST_F(TableEngine, OtherBitsAreStorage) {
  Store(0xF8);
  EXPECT_EQ(Load(), 0xFB);
  Store(0xB6);
  EXPECT_EQ(Load(), 0xB6);
  Store(0x50);
  EXPECT_EQ(Load(), 0x53);
  EXPECT_EQ(operations_, Operations{0xB6});
}

TEST_F(TableEngine, AStartWhileBusyIsComplainedAboutAndReplacesTheOperation) {
  Store(0x06);
  EXPECT_EQ(Load(), 0x06);
  Store(0x0C);
  EXPECT_EQ(registers_.Complaints(),
            (std::map<std::string, unsigned>{{"table engine started while busy", 1}}));
  registers_.ForgetComplaints();
  EXPECT_EQ(Load(), 0x0C);
  EXPECT_EQ(Load(), 0x0E);
  EXPECT_EQ(operations_, Operations{0x0C});
}

TEST_F(TableEngine, TheOperationFindsAndLeavesRegistersBeforeTheDoneBitIsSeen) {
  static constexpr monitor::Reg8 kData{0x600};
  registers_.Define(kData);
  Engine other(registers_, "other", monitor::Reg8{0x62D}, kTableEngineBits, [&](std::uint8_t) {
    registers_.Set(kData, registers_.Get(kData) + 1U);
    return true;
  });
  registers_.Store(0x600, 1, 0x41);
  registers_.Store(0x62D, 1, 0x06);
  (void)registers_.Load(0x62D, 1);
  EXPECT_EQ(registers_.Load(0x600, 1), 0x41U);
  EXPECT_EQ(registers_.Load(0x62D, 1), 0x07U);
  EXPECT_EQ(registers_.Load(0x600, 1), 0x42U);
}

TEST_F(TableEngine, SlowItTakesTheLoadsItIsTold) {
  engine_.SetFault({.kind = Fault::Kind::kSlow, .loads = 5});
  for (int round = 0; round < 2; ++round) {
    Store(0x06);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(Load(), 0x06);
    EXPECT_EQ(Load(), 0x07);
  }
  engine_.SetFault({.kind = Fault::Kind::kSlow, .loads = 1});
  Store(0x06);
  EXPECT_EQ(Load(), 0x07);
  engine_.SetFault({});
  Store(0x06);
  EXPECT_EQ(Load(), 0x06);
  EXPECT_EQ(Load(), 0x07);
}

TEST_F(TableEngine, SlowByNoLoadsItIsOverAtTheFirst) {
  engine_.SetFault({.kind = Fault::Kind::kSlow, .loads = 0});
  Store(0x06);
  EXPECT_EQ(Load(), 0x07);
  EXPECT_EQ(operations_, Operations{0x06});
}

TEST_F(TableEngine, HungItNeverCompletes) {
  engine_.SetFault({.kind = Fault::Kind::kHang});
  EXPECT_EQ(Load(), 0x03);  // ready, until it is started
  Store(0x0D);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(Load(), 0x0D);
  EXPECT_EQ(operations_, Operations{});
}

TEST_F(TableEngine, AHungOperationCompletesWhenTheFaultIsLifted) {
  engine_.SetFault({.kind = Fault::Kind::kHang});
  Store(0x06);
  (void)Load();
  engine_.SetFault({});
  EXPECT_EQ(Load(), 0x06);
  EXPECT_EQ(Load(), 0x07);
  EXPECT_EQ(operations_, Operations{0x06});
}

TEST_F(TableEngine, AnOperationThatIsUnderWayHangsToo) {
  Store(0x06);
  EXPECT_EQ(Load(), 0x06);
  engine_.SetFault({.kind = Fault::Kind::kHang});
  EXPECT_EQ(Load(), 0x06);
  EXPECT_EQ(Load(), 0x06);
}

TEST_F(TableEngine, BusyItsReadyBitsReadAs0) {
  engine_.SetFault({.kind = Fault::Kind::kBusy});
  Store(0xF0);
  EXPECT_EQ(Load(), 0xF0);
  EXPECT_EQ(Load(), 0xF0);
  engine_.SetFault({});
  EXPECT_EQ(Load(), 0xF3);
}

TEST_F(TableEngine, FailingItCompletesWithoutEffect) {
  engine_.SetFault({.kind = Fault::Kind::kFail});
  Store(0x06);
  EXPECT_EQ(Load(), 0x06);
  EXPECT_EQ(Load(), 0x07);
  EXPECT_EQ(operations_, Operations{});
}

TEST_F(TableEngine, ResetForgetsTheOperation) {
  Store(0xF4);
  (void)Load();
  engine_.Reset();
  EXPECT_EQ(Load(), 0x03);
  EXPECT_EQ(Load(), 0x03);
  EXPECT_EQ(operations_, Operations{});
}

/// An engine with one done bit for both directions and a result bit.
class ResultEngine : public testing::Test {
 protected:
  void Store(std::uint8_t value) { registers_.Store(kCommand, 1, value); }
  std::uint8_t Load() { return static_cast<std::uint8_t>(registers_.Load(kCommand, 1)); }

  void TearDown() override { EXPECT_TRUE(registers_.Complaints().empty()); }

  RegisterFile registers_;
  bool succeeds_ = true;
  unsigned runs_ = 0;
  Engine engine_{
      registers_, "result", monitor::Reg8{kCommand},
      EngineBits{
          .read_done = 0x80, .write_done = 0x80, .start = 0x01, .write = 0x02, .result = 0x40},
      [this](std::uint8_t) {
        ++runs_;
        return succeeds_;
      }};
};

TEST_F(ResultEngine, SharesItsDoneBitBetweenReadsAndWrites) {
  EXPECT_EQ(Load(), 0x80);
  Store(0x01);
  EXPECT_EQ(Load(), 0x01);
  EXPECT_EQ(Load() & 0x80, 0x80);
  Store(0x03);
  EXPECT_EQ(Load() & 0x80, 0x00);
  EXPECT_EQ(Load() & 0x80, 0x80);
}

TEST_F(ResultEngine, ReportsTheResultOfEachOperation) {
  Store(0x01);
  EXPECT_EQ(Load(), 0x01);
  EXPECT_EQ(Load(), 0xC1);
  succeeds_ = false;
  Store(0x01);
  EXPECT_EQ(Load() & 0x80, 0x00);
  EXPECT_EQ(Load(), 0x81);
  succeeds_ = true;
  Store(0x03);
  EXPECT_EQ(Load(), 0x03);
  EXPECT_EQ(Load(), 0xC3);
}

TEST_F(ResultEngine, StoresWithoutStartLeaveTheResultAlone) {
  Store(0x01);
  (void)Load();
  (void)Load();
  Store(0x00);
  EXPECT_EQ(Load(), 0xC0);
  succeeds_ = false;
  Store(0x01);
  (void)Load();
  (void)Load();
  Store(0xC0);
  EXPECT_EQ(Load(), 0x80);
}

TEST_F(ResultEngine, FailingItSaysSoAndDoesNothing) {
  engine_.SetFault({.kind = Fault::Kind::kFail});
  Store(0x03);
  (void)Load();
  EXPECT_EQ(Load(), 0x83);
  EXPECT_EQ(runs_, 0U);
}

TEST_F(ResultEngine, ResetClearsTheResult) {
  Store(0x01);
  (void)Load();
  (void)Load();
  engine_.Reset();
  EXPECT_EQ(Load(), 0x80);
}

}  // namespace
}  // namespace chip
