// The reset bits of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class ResetBits : public testing::Test {
 protected:
  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }

  void Pulse(std::uint8_t bit) {
    Store8(0x100, bit);
    Store8(0x100, 0x00);
  }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(ResetBits, AreClearAtPowerOnAndDoneIsSet) { EXPECT_EQ(Load8(0x100), 0x04); }

TEST_F(ResetBits, DoneIsClearWhileABitIsHeldAndRisesAfterTheLastRelease) {
  constexpr std::uint8_t kBits[] = {0x01, 0x10, 0x20};
  for (const std::uint8_t bit : kBits) {
    Store8(0x100, bit);
    EXPECT_EQ(Load8(0x100), bit);
    EXPECT_EQ(Load8(0x100), bit);
    Store8(0x100, 0x00);
    EXPECT_EQ(Load8(0x100), 0x04);
  }
  Store8(0x100, 0x30);
  Store8(0x100, 0x10);
  EXPECT_EQ(Load8(0x100), 0x10);
  Store8(0x100, 0x00);
  EXPECT_EQ(Load8(0x100), 0x04);
}

TEST_F(ResetBits, DoneIsNotForSoftwareToChange) {
  Store8(0x100, 0x00);
  EXPECT_EQ(Load8(0x100), 0x04);
  Store8(0x100, 0x20);
  Store8(0x100, 0x24);
  EXPECT_EQ(Load8(0x100), 0x20);
}

TEST_F(ResetBits, AHardwareResetRestoresEverythingWhenItIsReleased) {
  Store8(0x240, 0xC0);
  chip_.registers.Store(0x600, 4, 0x0A010200);
  chip_.registers.Store(0x118, 2, 0x1000);
  Store8(0x105, 0xFF);
  chip_.l3.Change(5).valid = true;
  Store8(0x100, 0x01);
  EXPECT_EQ(Load8(0x240), 0xC0);
  Store8(0x100, 0x00);
  EXPECT_EQ(Load8(0x240), 0);
  EXPECT_EQ(chip_.registers.Load(0x600, 4), 0U);
  EXPECT_EQ(chip_.registers.Load(0x118, 2), 0U);
  EXPECT_EQ(Load8(0x105), 0);
  EXPECT_FALSE(chip_.l3.Entries()[5].valid);
  EXPECT_EQ(Load8(0x60D), 0x03);
  EXPECT_EQ(Load8(0x101), 0x02);
  EXPECT_EQ(chip_.registers.Load(0x102, 2), 0x5910U);
}

TEST_F(ResetBits, AHardwareResetReleasesTheOtherBits) {
  Store8(0x100, 0x31);
  Store8(0x100, 0x30);
  EXPECT_EQ(Load8(0x100), 0x04);
}

TEST_F(ResetBits, ACpuAndChipSelectResetRestoresTheMemoryControllerOnly) {
  for (std::uint32_t start = 0x110; start <= 0x124; start += 4) {
    chip_.registers.Store(start, 2, 0x1234);
  }
  for (const std::uint32_t byte :
       {0x112U, 0x116U, 0x11AU, 0x11BU, 0x11EU, 0x11FU, 0x122U, 0x123U, 0x130U}) {
    Store8(byte, 0x5A);
  }
  Store8(0x105, 0xA5);
  Store8(0x240, 0xC0);
  Pulse(0x10);
  for (std::uint32_t start = 0x110; start <= 0x124; start += 4) {
    EXPECT_EQ(chip_.registers.Load(start, 2), 0U) << start;
  }
  for (const std::uint32_t byte :
       {0x112U, 0x116U, 0x11AU, 0x11BU, 0x11EU, 0x11FU, 0x122U, 0x123U, 0x130U}) {
    EXPECT_EQ(Load8(byte), 0) << byte;
  }
  EXPECT_EQ(Load8(0x105), 0xA5);
  EXPECT_EQ(Load8(0x240), 0xC0);
}

TEST_F(ResetBits, ACpuResetChangesNothingElse) {
  chip_.registers.Store(0x110, 2, 0x1234);
  Store8(0x105, 0xA5);
  Pulse(0x20);
  EXPECT_EQ(chip_.registers.Load(0x110, 2), 0x1234U);
  EXPECT_EQ(Load8(0x105), 0xA5);
}

TEST_F(ResetBits, TheIdentityIsReadOnly) {
  Store8(0x101, 0xFF);
  chip_.registers.Store(0x102, 2, 0xFFFF);
  EXPECT_EQ(Load8(0x101), 0x02);
  EXPECT_EQ(chip_.registers.Load(0x102, 2), 0x5910U);
  EXPECT_EQ(chip_.registers.Complaints().size(), 2U);
  chip_.registers.ForgetComplaints();
}

TEST_F(ResetBits, FaultsKeepDoneAway) {
  ASSERT_TRUE(chip_.SetFault("reset", {.kind = Fault::Kind::kBusy}));
  EXPECT_EQ(Load8(0x100), 0x00);

  ASSERT_TRUE(chip_.SetFault("reset", {.kind = Fault::Kind::kHang}));
  EXPECT_EQ(Load8(0x100), 0x04);
  Pulse(0x01);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(Load8(0x100), 0x00);
  ASSERT_TRUE(chip_.SetFault("reset", {}));
  EXPECT_EQ(Load8(0x100), 0x04);

  ASSERT_TRUE(chip_.SetFault("reset", {.kind = Fault::Kind::kSlow, .loads = 3}));
  Pulse(0x20);
  EXPECT_EQ(Load8(0x100), 0x00);
  EXPECT_EQ(Load8(0x100), 0x00);
  EXPECT_EQ(Load8(0x100), 0x04);
}

TEST_F(ResetBits, SlowByNoLoadsDoneRisesAtTheFirst) {
  ASSERT_TRUE(chip_.SetFault("reset", {.kind = Fault::Kind::kSlow, .loads = 0}));
  Pulse(0x20);
  EXPECT_EQ(Load8(0x100), 0x04);
}

TEST_F(ResetBits, AFailingResetHasNoEffect) {
  ASSERT_TRUE(chip_.SetFault("reset", {.kind = Fault::Kind::kFail}));
  Store8(0x105, 0xA5);
  Pulse(0x01);
  EXPECT_EQ(Load8(0x100), 0x04);
  EXPECT_EQ(Load8(0x105), 0xA5);
}

TEST_F(ResetBits, FaultsAreKnownByName) {
  EXPECT_TRUE(chip_.SetFault("l3", {.kind = Fault::Kind::kBusy}));
  EXPECT_EQ(Load8(0x60D), 0x00);
  EXPECT_FALSE(chip_.SetFault("l4", {}));
}

}  // namespace
}  // namespace chip
