// The L3 engine of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"
#include "core/entry_map.h"

namespace chip {
namespace {

class L3Engine : public testing::Test {
 protected:
  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }

  /// A step: start, end of the pulse, wait.
  void Run(std::uint8_t start) {
    Store8(0x60D, start);
    Store8(0x60D, start & 0xFB);
    (void)Load8(0x60D);
    ASSERT_EQ(Load8(0x60D) & 0x03, 0x03);
  }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(L3Engine, IsReadyAtPowerOn) { EXPECT_EQ(Load8(0x60D), 0x03); }

TEST_F(L3Engine, AStartClearsTheDoneBitUntilTheSecondLoad) {
  Store8(0x60D, 0x06);  // read, read done written as 0
  EXPECT_EQ(Load8(0x60D), 0x06);
  Store8(0x60D, 0x02);
  EXPECT_EQ(Load8(0x60D), 0x03);
}

TEST_F(L3Engine, StoresWithoutStartLeaveTheDoneBitsAlone) {
  Store8(0x60D, 0x00);
  EXPECT_EQ(Load8(0x60D), 0x03);
  Store8(0x60D, 0x06);
  Store8(0x60D, 0x03);
  EXPECT_EQ(Load8(0x60D), 0x02);
}

TEST_F(L3Engine, AWrittenRouteReadsBackAfterTheWindowHeldAnother) {
  Store8(0x60E, 0x05);
  chip_.registers.Store(0x600, 4, 0x0A010200);
  chip_.registers.Store(0x608, 4, 0x0A010201);
  Store8(0x604, 24);
  Store8(0x60C, 0x32);
  Store8(0x605, 0xFD);
  Run(0x0D);

  Store8(0x60E, 0x06);
  Run(0x06);
  EXPECT_EQ(chip_.registers.Load(0x600, 4), 0U);
  EXPECT_EQ(Load8(0x60C), 0);

  Store8(0x60E, 0x05);
  Run(0x06);
  EXPECT_EQ(chip_.registers.Load(0x600, 4), 0x0A010200U);
  EXPECT_EQ(chip_.registers.Load(0x608, 4), 0x0A010201U);
  EXPECT_EQ(Load8(0x604), 24);
  EXPECT_EQ(Load8(0x60C), 0x32);
  EXPECT_EQ(Load8(0x605), 0x05);  // only three bits exist
}

TEST_F(L3Engine, TheFlagWithoutANameIsKept) {
  Store8(0x60C, 0x80);
  Run(0x0D);
  Store8(0x60C, 0x00);
  Run(0x06);
  EXPECT_EQ(Load8(0x60C), 0x80);
}

TEST_F(L3Engine, ACounterWriteLeavesTheRouteAlone) {
  chip_.l3.Change(5) = {.ip = 0x01020304, .port = 1, .valid = true, .counter = 7};
  chip_.registers.Store(0x600, 4, 0xDEADBEEF);
  Run(0x06);  // a read forgets what was stored before it
  Store8(0x60E, 0x05);
  chip_.registers.Store(0x610, 4, 0x12345678);
  Run(0x1D);
  EXPECT_EQ(chip_.l3.Entries()[5].counter, 0x12345678U);
  EXPECT_EQ(chip_.l3.Entries()[5].ip, 0x01020304U);
}

TEST_F(L3Engine, AnOverflowClearTakesAwayTheOnesAndRewritesNoRoute) {
  chip_.l3.map = {0xFF, 0, 0, 0, 0, 0, 0, 0x81};
  chip_.l3.Change(5).ip = 0x01020304;
  Store8(0x60E, 0x05);
  for (unsigned i = 0; i < 8; ++i) Store8(0x614 + i, i == 0 ? 0x80 : i == 7 ? 0x01 : 0x00);
  Run(0x0D);
  EXPECT_EQ(chip_.l3.map, (monitor::EntryMap{0x7F, 0, 0, 0, 0, 0, 0, 0x80}));
  EXPECT_EQ(chip_.l3.Entries()[5].ip, 0x01020304U);

  Run(0x06);
  EXPECT_EQ(Load8(0x614), 0x7F);
  EXPECT_EQ(Load8(0x61B), 0x80);
}

TEST_F(L3Engine, AFailedStepForgetsWhatWasStored) {
  chip_.l3.engine.SetFault({.kind = Fault::Kind::kFail});
  chip_.registers.Store(0x600, 4, 0x0A010200);
  chip_.registers.Store(0x610, 4, 0x12345678);
  Run(0x0D);
  chip_.l3.engine.SetFault({});
  Run(0x0D);
  EXPECT_EQ(chip_.l3.Entries()[0], L3RouteTable::Entry{});
}

TEST_F(L3Engine, AStartWhileBusyIsComplainedAbout) {
  Store8(0x60D, 0x06);
  Store8(0x60D, 0x06);
  EXPECT_EQ(chip_.registers.Complaints().count("l3 engine started while busy"), 1U);
  chip_.registers.ForgetComplaints();
}

TEST_F(L3Engine, FaultsHangItMakeItBusyOrSlow) {
  chip_.l3.engine.SetFault({.kind = Fault::Kind::kBusy});
  EXPECT_EQ(Load8(0x60D), 0x00);
  chip_.l3.engine.SetFault({.kind = Fault::Kind::kSlow, .loads = 5});
  Store8(0x60D, 0x06);
  Store8(0x60D, 0x02);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(Load8(0x60D), 0x02);
  EXPECT_EQ(Load8(0x60D), 0x03);
  chip_.l3.engine.SetFault({.kind = Fault::Kind::kHang});
  Store8(0x60D, 0x06);
  Store8(0x60D, 0x02);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(Load8(0x60D), 0x02);
}

TEST_F(L3Engine, ResetEmptiesTheTable) {
  chip_.l3.Change(5).ip = 0x01020304;
  chip_.l3.map[0] = 0xFF;
  chip_.Reset();
  EXPECT_EQ(chip_.l3.Entries()[5].ip, 0U);
  EXPECT_EQ(chip_.l3.map[0], 0);
  EXPECT_EQ(Load8(0x60D), 0x03);
}

}  // namespace
}  // namespace chip
