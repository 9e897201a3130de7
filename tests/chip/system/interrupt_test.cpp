// The interrupt controller of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class Interrupts : public testing::Test {
 protected:
  static constexpr monitor::Field kSource{4, 4};
  static constexpr monitor::Field kOtherSource{9, 8};

  std::uint32_t Status() { return chip_.registers.Load(0x210, 2); }
  void Acknowledge(std::uint32_t events) { chip_.registers.Store(0x210, 2, events); }
  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(Interrupts, AnEventStaysUntilAOneIsWritten) {
  EXPECT_EQ(Status(), 0U);
  chip_.interrupts.Raise(kSource);
  chip_.interrupts.Raise(kOtherSource);
  EXPECT_EQ(Status(), 0x0310U);
  Acknowledge(0xFCEF);
  EXPECT_EQ(Status(), 0x0310U);
  Acknowledge(0x0110);
  EXPECT_EQ(Status(), 0x0200U);
}

TEST_F(Interrupts, EachByteAcknowledgesItsOwnEvents) {
  chip_.interrupts.Raise(kSource);
  chip_.interrupts.Raise(kOtherSource);
  chip_.registers.Store(0x211, 1, 0xFF);
  EXPECT_EQ(Status(), 0x0300U);
}

TEST_F(Interrupts, AHeldSourceCannotBeAcknowledgedAway) {
  chip_.interrupts.Hold(kSource, true);
  EXPECT_EQ(Status(), 0x0010U);
  Acknowledge(0xFFFF);
  EXPECT_EQ(Status(), 0x0010U);
  chip_.interrupts.Hold(kSource, false);
  EXPECT_EQ(Status(), 0x0010U);
  Acknowledge(0x0010);
  EXPECT_EQ(Status(), 0U);
}

TEST_F(Interrupts, GroupAndMaskAreStorage) {
  chip_.registers.Store(0x212, 2, 0x1234);
  chip_.registers.Store(0x214, 2, 0xFEDC);
  EXPECT_EQ(chip_.registers.Load(0x212, 2), 0x1234U);
  EXPECT_EQ(chip_.registers.Load(0x214, 2), 0xFEDCU);
}

TEST_F(Interrupts, ResetForgetsEvents) {
  chip_.interrupts.Hold(kSource, true);
  chip_.Reset();
  EXPECT_EQ(Status(), 0U);
  chip_.interrupts.Raise(kSource);
  Acknowledge(0x0010);
  EXPECT_EQ(Status(), 0U);
}

}  // namespace
}  // namespace chip
