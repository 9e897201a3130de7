// The general-purpose pins of the model, by raw loads and stores and levels from outside.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class GpioPins : public testing::Test {
 protected:
  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(GpioPins, AreInputsAtPowerOn) {
  Store8(0x221, 0xFF);
  EXPECT_EQ(Load8(0x221), 0x00);
  chip_.gpio.SetInputs(0x5A);
  EXPECT_EQ(Load8(0x221), 0x5A);
}

TEST_F(GpioPins, OutputsShowWhatIsDriven) {
  Store8(0x220, 0x0F);
  chip_.gpio.SetInputs(0x55);
  Store8(0x221, 0xAA);
  EXPECT_EQ(Load8(0x221), 0x5A);
  Store8(0x220, 0xFF);
  EXPECT_EQ(Load8(0x221), 0xAA);  // the bits stored for inputs are not forgotten
}

TEST_F(GpioPins, AChosenEdgeOnAnEnabledInputRaisesItsStatusBit) {
  Store8(0x224, 0x3F);  // enabled: 0 to 5
  Store8(0x225, 0x55);  // rising: even pins; falling: odd pins
  Store8(0x220, 0x03);  // outputs: 0 and 1
  chip_.gpio.SetInputs(0xFF);
  EXPECT_EQ(Load8(0x222), 0x14);
  chip_.gpio.SetInputs(0xFF);
  EXPECT_EQ(Load8(0x222), 0x14);
  chip_.gpio.SetInputs(0x00);
  EXPECT_EQ(Load8(0x222), 0x3C);
}

TEST_F(GpioPins, OnesClearStatusBits) {
  Store8(0x224, 0xFF);
  Store8(0x225, 0xFF);
  chip_.gpio.SetInputs(0xFF);
  Store8(0x222, 0x0F);
  EXPECT_EQ(Load8(0x222), 0xF0);
  Store8(0x222, 0x00);
  EXPECT_EQ(Load8(0x222), 0xF0);
}

TEST_F(GpioPins, ChangesOfTheSettingsAreNoEdges) {
  chip_.gpio.SetInputs(0xFF);
  Store8(0x224, 0xFF);
  Store8(0x225, 0xFF);
  Store8(0x220, 0xFF);
  Store8(0x220, 0x00);
  EXPECT_EQ(Load8(0x222), 0x00);
}

TEST_F(GpioPins, TheSettingOnlyHolds) {
  Store8(0x223, 0xA5);
  EXPECT_EQ(Load8(0x223), 0xA5);
  EXPECT_EQ(Load8(0x221), 0x00);
}

TEST_F(GpioPins, AResetStopsDrivingButKeepsTheLevelsFromOutside) {
  Store8(0x220, 0xF0);
  Store8(0x221, 0xFF);
  chip_.gpio.SetInputs(0x3C);
  chip_.Reset();
  EXPECT_EQ(Load8(0x220), 0x00);
  EXPECT_EQ(Load8(0x221), 0x3C);
  Store8(0x220, 0xFF);
  EXPECT_EQ(Load8(0x221), 0x00);
}

}  // namespace
}  // namespace chip
