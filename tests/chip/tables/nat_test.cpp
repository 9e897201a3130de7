// The NAT engine of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class NatEngine : public testing::Test {
 protected:
  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }

  void Start(std::uint8_t start) {
    Store8(0x51C, start);
    Store8(0x51C, start & 0xF7);
  }

  /// A step: start, end of the pulse, wait. The result bit.
  bool Run(std::uint8_t start) {
    Start(start);
    (void)Load8(0x51C);
    EXPECT_EQ(Load8(0x51C) & 0x03, 0x03);
    return (Load8(0x51C) & 0x04) != 0;
  }
  bool RunRead() { return Run(0x0A); }
  bool RunWrite() { return Run(0x59); }
  bool RunDelete() { return Run(0x19); }

  void StoreEntry(std::uint32_t dip, std::uint16_t dport, std::uint8_t control) {
    chip_.registers.Store(0x500, 4, 0xC0A80102);
    chip_.registers.Store(0x508, 4, dip);
    chip_.registers.Store(0x504, 2, 0x0401);
    chip_.registers.Store(0x50C, 2, dport);
    chip_.registers.Store(0x548, 4, 0x01020304);
    chip_.registers.Store(0x506, 2, 0x8001);
    chip_.registers.Store(0x516, 2, 0x0258);
    Store8(0x51B, control);
  }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(NatEngine, IsReadyWithoutAResultAtPowerOn) { EXPECT_EQ(Load8(0x51C), 0x03); }

TEST_F(NatEngine, AStartClearsTheDoneBitAndTheEndSetsTheResult) {
  Start(0x0A);  // read, read done written as 0
  EXPECT_EQ(Load8(0x51C), 0x02);
  EXPECT_EQ(Load8(0x51C), 0x07);
}

TEST_F(NatEngine, StoresWithoutStartLeaveDoneAndResultAlone) {
  Store8(0x51C, 0x00);
  EXPECT_EQ(Load8(0x51C), 0x03);
  RunRead();
  Store8(0x51C, 0x00);
  EXPECT_EQ(Load8(0x51C), 0x07);
}

TEST_F(NatEngine, AnEmptySlotReadsWithSuccess) {
  Store8(0x51A, 0xFF);
  Store8(0x51B, 0x00);
  EXPECT_TRUE(RunRead());
  EXPECT_EQ(chip_.registers.Load(0x508, 4), 0U);
}

TEST_F(NatEngine, AWrittenEntryReadsBackAfterTheWindowHeldAnother) {
  Store8(0x51A, 0x4B);
  StoreEntry(0x0A000041, 0x0050, 0x04);
  EXPECT_TRUE(RunWrite());

  Store8(0x51A, 0x4C);
  EXPECT_TRUE(RunRead());
  EXPECT_EQ(chip_.registers.Load(0x500, 4), 0U);
  EXPECT_EQ(Load8(0x51B), 0x00);

  Store8(0x51A, 0x4B);
  EXPECT_TRUE(RunRead());
  EXPECT_EQ(chip_.registers.Load(0x500, 4), 0xC0A80102U);
  EXPECT_EQ(chip_.registers.Load(0x504, 2), 0x0401U);
  EXPECT_EQ(chip_.registers.Load(0x506, 2), 0x8001U);
  EXPECT_EQ(chip_.registers.Load(0x508, 4), 0x0A000041U);
  EXPECT_EQ(chip_.registers.Load(0x50C, 2), 0x0050U);
  EXPECT_EQ(chip_.registers.Load(0x516, 2), 0x0258U);
  EXPECT_EQ(chip_.registers.Load(0x548, 4), 0x01020304U);
  EXPECT_EQ(Load8(0x51B), 0x04);
}

TEST_F(NatEngine, TheServerTableIsASeparateTable) {
  Store8(0x51A, 0x0F);
  StoreEntry(0x0A000041, 0x0050, 0x03);
  EXPECT_TRUE(RunWrite());
  EXPECT_TRUE(chip_.nat.server.Entries()[0x0F].valid);
  EXPECT_TRUE(chip_.nat.server.Entries()[0x0F].server);
  EXPECT_FALSE(chip_.nat.main.Entries()[0x0F].valid);

  Store8(0x51B, 0x01);
  EXPECT_TRUE(RunRead());
  EXPECT_EQ(Load8(0x51B), 0x03);
}

TEST_F(NatEngine, ServerSlotsAbove15DoNotExist) {
  Store8(0x51A, 0x10);
  Store8(0x51B, 0x01);
  EXPECT_FALSE(RunRead());
  EXPECT_FALSE(RunWrite());
  EXPECT_FALSE(RunDelete());
}

TEST_F(NatEngine, AWriteIsRefusedWhereAnotherDestinationIsStored) {
  Store8(0x51A, 0x10);
  StoreEntry(0x0A000041, 0x0050, 0x04);
  EXPECT_TRUE(RunWrite());
  for (const auto& [dip, dport] : {std::pair<std::uint32_t, std::uint16_t>{0x0A000042, 0x0050},
                                   std::pair<std::uint32_t, std::uint16_t>{0x0A000041, 0x0051}}) {
    StoreEntry(dip, dport, 0x00);
    EXPECT_FALSE(RunWrite());
  }
  EXPECT_EQ(chip_.nat.main.Entries()[0x10].dip, 0x0A000041U);
  EXPECT_EQ(chip_.nat.main.Entries()[0x10].dport, 0x0050);

  StoreEntry(0x0A000041, 0x0050, 0x00);  // the same destination, now UDP
  EXPECT_TRUE(RunWrite());
  EXPECT_FALSE(chip_.nat.main.Entries()[0x10].tcp);
}

TEST_F(NatEngine, ARefusedWriteLeavesTheWindowForTheNextSlot) {
  Store8(0x51A, 0x10);
  StoreEntry(0x0A000041, 0x0050, 0x04);
  EXPECT_TRUE(RunWrite());
  StoreEntry(0x0A000099, 0x0050, 0x04);
  EXPECT_FALSE(RunWrite());
  Store8(0x51A, 0x80);
  EXPECT_TRUE(RunWrite());
  EXPECT_EQ(chip_.nat.main.Entries()[0x80].dip, 0x0A000099U);
}

TEST_F(NatEngine, ADeleteClearsTheValidBitAndKeepsTheRest) {
  Store8(0x51A, 0x10);
  StoreEntry(0x0A000041, 0x0050, 0x04);
  EXPECT_TRUE(RunWrite());
  EXPECT_TRUE(RunDelete());
  EXPECT_FALSE(chip_.nat.main.Entries()[0x10].valid);
  EXPECT_EQ(chip_.nat.main.Entries()[0x10].dip, 0x0A000041U);
  EXPECT_TRUE(RunDelete());

  StoreEntry(0x0A000099, 0x0050, 0x04);  // the slot is free again
  EXPECT_TRUE(RunWrite());
}

TEST_F(NatEngine, TheValidBitsFollowTheTables) {
  for (unsigned i = 0; i < 34; ++i) EXPECT_EQ(Load8(0x523 + i), 0);
  for (const unsigned slot : {0x00U, 0x07U, 0x08U, 0x4BU, 0xFFU}) {
    chip_.nat.main.Change(slot).valid = true;
  }
  chip_.nat.server.Change(0).valid = chip_.nat.server.Change(15).valid = true;
  EXPECT_EQ(Load8(0x523), 0x81);
  EXPECT_EQ(Load8(0x524), 0x01);
  EXPECT_EQ(Load8(0x52C), 0x08);
  EXPECT_EQ(Load8(0x542), 0x80);
  EXPECT_EQ(Load8(0x543), 0x01);
  EXPECT_EQ(Load8(0x544), 0x80);
  chip_.nat.main.Change(0x4B).valid = false;
  EXPECT_EQ(Load8(0x52C), 0x00);
}

TEST_F(NatEngine, AStoreToAValidBitIsComplainedAbout) {
  Store8(0x542, 0xFF);
  EXPECT_EQ(Load8(0x542), 0);
  EXPECT_EQ(chip_.registers.Complaints().count("store to read-only NAT_VALID at 0542"), 1U);
  chip_.registers.ForgetComplaints();
}

TEST_F(NatEngine, AFailingEngineClearsTheResultAndTouchesNothing) {
  chip_.nat.main.Change(0x10) = {.dip = 0x0A000041, .valid = true};
  EXPECT_TRUE(RunRead());
  chip_.nat.engine.SetFault({.kind = Fault::Kind::kFail});
  Store8(0x51A, 0x10);
  StoreEntry(0x0A000099, 0x0050, 0x04);
  EXPECT_FALSE(RunRead());
  EXPECT_EQ(chip_.registers.Load(0x508, 4), 0x0A000099U);
  EXPECT_FALSE(RunDelete());
  EXPECT_TRUE(chip_.nat.main.Entries()[0x10].valid);
}

TEST_F(NatEngine, SettingsAreStoredAndForgottenAtReset) {
  chip_.registers.Store(0x510, 4, 0xC0A80101);
  Store8(0x515, 0x80);
  Store8(0x51D, 0xA5);
  chip_.registers.Store(0x51E, 2, 0x0258);
  chip_.registers.Store(0x520, 2, 0x1234);
  chip_.nat.main.Change(0xFF).valid = chip_.nat.server.Change(3).valid = true;
  EXPECT_EQ(chip_.registers.Load(0x510, 4), 0xC0A80101U);
  EXPECT_EQ(Load8(0x515), 0x80);
  EXPECT_EQ(Load8(0x51D), 0xA5);
  EXPECT_EQ(chip_.registers.Load(0x51E, 2), 0x0258U);
  EXPECT_EQ(chip_.registers.Load(0x520, 2), 0x1234U);

  Start(0x0A);
  chip_.Reset();
  EXPECT_EQ(chip_.registers.Load(0x510, 4), 0U);
  EXPECT_EQ(Load8(0x51D), 0);
  EXPECT_EQ(Load8(0x51C), 0x03);
  EXPECT_EQ(Load8(0x542), 0);
  EXPECT_EQ(Load8(0x543), 0);
}

}  // namespace
}  // namespace chip
