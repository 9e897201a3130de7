// The classifier engine of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class ClassifierEngine : public testing::Test {
 protected:
  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  void Store16(std::uint32_t offset, std::uint16_t value) {
    chip_.registers.Store(offset, 2, value);
  }
  void Store32(std::uint32_t offset, std::uint32_t value) {
    chip_.registers.Store(offset, 4, value);
  }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }
  std::uint32_t Load16(std::uint32_t offset) { return chip_.registers.Load(offset, 2); }
  std::uint32_t Load32(std::uint32_t offset) { return chip_.registers.Load(offset, 4); }

  /// A step: start, end of the pulse, wait.
  void Run(std::uint8_t start) {
    Store8(0x720, start);
    Store8(0x720, start & 0xFB);
    (void)Load8(0x720);
    ASSERT_EQ(Load8(0x720) & 0x03, 0x03);
  }

  void ReadRule(std::uint8_t index) {
    Store8(0x721, index);
    Run(0x06);
  }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  RouterChip chip_;
};

TEST_F(ClassifierEngine, IsReadyAtPowerOn) { EXPECT_EQ(Load8(0x720), 0x03); }

TEST_F(ClassifierEngine, AStartClearsTheDoneBitUntilTheSecondLoad) {
  Store8(0x720, 0x06);  // read, read done written as 0
  EXPECT_EQ(Load8(0x720), 0x06);
  Store8(0x720, 0x02);
  EXPECT_EQ(Load8(0x720), 0x03);
}

TEST_F(ClassifierEngine, TheEndOfACounterWriteRaisesBothDoneBitsThatItsStartCleared) {
  Store8(0x720, 0x2C);
  EXPECT_EQ(Load8(0x720), 0x2C);
  Store8(0x720, 0x28);
  EXPECT_EQ(Load8(0x720), 0x2B);
}

TEST_F(ClassifierEngine, AStoreOfDoneBitsDoesNotEndAWrite) {
  Store8(0x720, 0x2C);
  Store8(0x720, 0x28);
  Store8(0x720, 0x03);
  EXPECT_EQ(Load8(0x720), 0x00);
  EXPECT_EQ(Load8(0x720), 0x03);
}

TEST_F(ClassifierEngine, AWrittenRuleReadsBackAfterTheWindowHeldAnother) {
  Store8(0x721, 0x7F);
  Store16(0x700, 0x0806);
  Store8(0x702, 0x11);
  Store8(0x703, 0xB8);
  Store32(0x704, 0x0A000001);
  Store8(0x708, 0x18);
  Store32(0x70C, 0xC0A80101);
  Store8(0x710, 0x20);
  Store16(0x714, 0x1234);
  Store16(0x716, 0x5678);
  Store8(0x718, 0xF6);
  Store8(0x719, 0xDA);
  Store32(0x71C, 0x12BBA9FF);
  Store32(0x724, 0xDEADBEEF);
  for (std::uint8_t i = 0; i < 6; ++i) {
    Store8(0x740U + i, static_cast<std::uint8_t>(0x10 + i));
    Store8(0x748U + i, static_cast<std::uint8_t>(0x20 + i));
  }
  Store16(0x750, 0x0ABC);
  Store8(0x752, 0x1F);
  Store8(0x753, 0x08);
  Store8(0x754, 0x35);
  Store8(0x755, 0x3F);
  Store16(0x756, 0x3FFF);
  Run(0x0D);

  ReadRule(0x00);
  for (std::uint32_t offset = 0x700; offset < 0x758; ++offset) {
    EXPECT_EQ(chip_.registers.Snapshot()[offset], offset == 0x720 ? 0x03 : 0) << offset;
  }

  ReadRule(0x7F);
  EXPECT_EQ(Load16(0x700), 0x0806U);
  EXPECT_EQ(Load8(0x702), 0x11);
  EXPECT_EQ(Load8(0x703), 0xB8);
  EXPECT_EQ(Load32(0x704), 0x0A000001U);
  EXPECT_EQ(Load8(0x708), 0x18);
  EXPECT_EQ(Load32(0x70C), 0xC0A80101U);
  EXPECT_EQ(Load8(0x710), 0x20);
  EXPECT_EQ(Load16(0x714), 0x1234U);
  EXPECT_EQ(Load16(0x716), 0x5678U);
  EXPECT_EQ(Load8(0x718), 0xF6);
  EXPECT_EQ(Load8(0x719), 0xDA);
  EXPECT_EQ(Load32(0x71C), 0x12BBA9FFU);
  EXPECT_EQ(Load32(0x724), 0xDEADBEEFU);
  EXPECT_EQ(Load8(0x740), 0x10);
  EXPECT_EQ(Load8(0x745), 0x15);
  EXPECT_EQ(Load8(0x748), 0x20);
  EXPECT_EQ(Load8(0x74D), 0x25);
  EXPECT_EQ(Load16(0x750), 0x0ABCU);
  EXPECT_EQ(Load8(0x752), 0x1F);
  EXPECT_EQ(Load8(0x753), 0x08);
  EXPECT_EQ(Load8(0x754), 0x35);
  EXPECT_EQ(Load8(0x755), 0x3F);
  EXPECT_EQ(Load16(0x756), 0x3FFFU);
}

TEST_F(ClassifierEngine, ARuleWriteTakesTheWholeWindowButNoStaleCounter) {
  chip_.classifier.Change(70).sip = 0x01020304;
  chip_.classifier.Change(70).counter = 0x70;
  chip_.classifier.Change(6).counter = 0x06;
  ReadRule(70);
  Store8(0x721, 6);
  Store32(0x71C, 0x00000201);
  Run(0x0D);
  EXPECT_TRUE(chip_.classifier.Entries()[6].valid);
  EXPECT_TRUE(chip_.classifier.Entries()[6].end);
  EXPECT_EQ(chip_.classifier.Entries()[6].sip, 0x01020304U);  // what the window held
  EXPECT_EQ(chip_.classifier.Entries()[6].counter, 0x06U);    // was not stored
  EXPECT_FALSE(chip_.classifier.Entries()[70].valid);
}

TEST_F(ClassifierEngine, ACounterWriteLeavesTheRuleAlone) {
  chip_.classifier.Change(5).sip = 0x01020304;
  Store32(0x704, 0xDEADBEEF);
  Store8(0x721, 5);
  Store32(0x724, 0x12345678);
  Run(0x2C);
  EXPECT_EQ(chip_.classifier.Entries()[5].counter, 0x12345678U);
  EXPECT_EQ(chip_.classifier.Entries()[5].sip, 0x01020304U);
}

TEST_F(ClassifierEngine, AnOverflowClearTakesAwayTheOnesAndNoCounter) {
  chip_.classifier.map = {0xFF, 0, 0, 0, 0, 0, 0, 0, 0x81};
  chip_.classifier.Change(5).counter = 7;
  Store8(0x721, 5);
  for (unsigned i = 0; i < 9; ++i) Store8(0x728 + i, i == 0 ? 0x80 : i == 8 ? 0x01 : 0x00);
  Run(0x2C);
  EXPECT_EQ(chip_.classifier.map[0], 0x7F);
  EXPECT_EQ(chip_.classifier.map[8], 0x80);
  EXPECT_EQ(chip_.classifier.Entries()[5].counter, 7U);

  Run(0x26);  // a read under the counter select still loads everything
  EXPECT_EQ(Load8(0x728), 0x7F);
  EXPECT_EQ(Load8(0x729), 0x00);
  EXPECT_EQ(Load8(0x730), 0x80);
  EXPECT_EQ(Load32(0x724), 7U);
}

TEST_F(ClassifierEngine, ARuleWriteClearsNoOverflow) {
  chip_.classifier.map[0] = 0xFF;
  Store8(0x728, 0xFF);
  Run(0x0D);
  EXPECT_EQ(chip_.classifier.map[0], 0xFF);
}

TEST_F(ClassifierEngine, OverflowBitsBeginAtRule38) {
  for (unsigned rule = 0; rule < 0x38; ++rule) chip_.classifier.SetMapBit(rule);
  EXPECT_EQ(chip_.classifier.map, (std::array<std::uint8_t, 9>{}));
  chip_.classifier.SetMapBit(0x38);
  chip_.classifier.SetMapBit(0x7F);
  EXPECT_EQ(chip_.classifier.map, (std::array<std::uint8_t, 9>{0x80, 0, 0, 0, 0, 0, 0, 0, 0x01}));
}

TEST_F(ClassifierEngine, TheChainHeadIsARegisterByItself) {
  Store8(0x722, 0x7F);
  ReadRule(3);
  EXPECT_EQ(Load8(0x722), 0x7F);
}

TEST_F(ClassifierEngine, AStartWhileBusyIsComplainedAbout) {
  Store8(0x720, 0x06);
  Store8(0x720, 0x06);
  EXPECT_EQ(chip_.registers.Complaints().count("cls engine started while busy"), 1U);
  chip_.registers.ForgetComplaints();
}

TEST_F(ClassifierEngine, AFailedStepForgetsWhatWasStored) {
  chip_.classifier.engine.SetFault({.kind = Fault::Kind::kFail});
  Store32(0x704, 0x01020304);
  Store32(0x724, 0x12345678);
  Run(0x0D);
  chip_.classifier.engine.SetFault({});
  Run(0x0D);
  EXPECT_EQ(chip_.classifier.Entries()[0].sip, 0U);
  EXPECT_EQ(chip_.classifier.Entries()[0].counter, 0U);
}

TEST_F(ClassifierEngine, ResetEmptiesTheTable) {
  chip_.classifier.Change(5).sip = 0x01020304;
  chip_.classifier.map[0] = 0xFF;
  Store8(0x722, 0x7F);
  chip_.Reset();
  EXPECT_EQ(chip_.classifier.Entries()[5].sip, 0U);
  EXPECT_EQ(chip_.classifier.map[0], 0);
  EXPECT_EQ(Load8(0x722), 0);
  EXPECT_EQ(Load8(0x720), 0x03);
}

TEST_F(ClassifierEngine, IsFoundByItsNameForFaults) {
  ASSERT_TRUE(chip_.SetFault("cls", {.kind = Fault::Kind::kBusy}));
  EXPECT_EQ(Load8(0x720), 0x00);
}

}  // namespace
}  // namespace chip
