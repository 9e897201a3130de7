// The PDR engine of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class PdrEngine : public testing::Test {
 protected:
  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }

  /// A step: start, end of the pulse, wait.
  void Run(std::uint8_t start, std::uint8_t end) {
    Store8(0xA16, start);
    Store8(0xA16, end);
    (void)Load8(0xA16);
    ASSERT_EQ(Load8(0xA16) & 0x03, 0x03);
  }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(PdrEngine, IsReadyAtPowerOn) { EXPECT_EQ(Load8(0xA16), 0x03); }

TEST_F(PdrEngine, AWrittenEntryReadsBackAfterTheWindowHeldAnother) {
  chip_.registers.Store(0xA10, 4, 0xC0A80109);
  Store8(0xA15, 0xFB);
  Store8(0xA14, 0x3F);
  Run(0x0D, 0x09);

  Store8(0xA14, 0x3E);
  Run(0x06, 0x02);
  EXPECT_EQ(chip_.registers.Load(0xA10, 4), 0U);
  EXPECT_EQ(Load8(0xA15), 0);

  Store8(0xA14, 0x3F);
  Run(0x06, 0x02);
  EXPECT_EQ(chip_.registers.Load(0xA10, 4), 0xC0A80109U);
  EXPECT_EQ(Load8(0xA15), 0x0B);  // only four bits exist
}

TEST_F(PdrEngine, AnIndexAloneWritesNoEntry) {
  chip_.pdr.Change(1) = {.ip = 0x01020304, .valid = true};
  chip_.pdr.Change(2) = {.ip = 0x05060708, .pppoe = true, .valid = true};
  Store8(0xA14, 1);
  Run(0x06, 0x02);
  Store8(0xA14, 2);
  Run(0x0D, 0x09);
  EXPECT_EQ(chip_.pdr.Entries()[2].ip, 0x05060708U);
  EXPECT_TRUE(chip_.pdr.Entries()[2].pppoe);
  EXPECT_TRUE(chip_.pdr.Entries()[2].valid);
}

TEST_F(PdrEngine, TheIndexHasSixBits) {
  chip_.pdr.Change(5).ip = 0x01020304;
  Store8(0xA14, 0xC5);
  Run(0x06, 0x02);
  EXPECT_EQ(chip_.registers.Load(0xA10, 4), 0x01020304U);
}

TEST_F(PdrEngine, AStartWhileBusyIsComplainedAbout) {
  Store8(0xA16, 0x06);
  Store8(0xA16, 0x06);
  EXPECT_EQ(chip_.registers.Complaints().count("pdr engine started while busy"), 1U);
  chip_.registers.ForgetComplaints();
}

TEST_F(PdrEngine, AFailedStepForgetsWhatWasStored) {
  chip_.pdr.engine.SetFault({.kind = Fault::Kind::kFail});
  chip_.registers.Store(0xA10, 4, 0xC0A80109);
  Run(0x0D, 0x09);
  chip_.pdr.engine.SetFault({});
  Run(0x0D, 0x09);
  EXPECT_EQ(chip_.pdr.Entries()[0].ip, 0U);
}

TEST_F(PdrEngine, ResetEmptiesTheTable) {
  chip_.pdr.Change(63).ip = 1;
  chip_.Reset();
  EXPECT_EQ(chip_.pdr.Entries()[63].ip, 0U);
}

}  // namespace
}  // namespace chip
