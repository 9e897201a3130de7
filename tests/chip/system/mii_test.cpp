// The MII interface of the model and its PHYs, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class MiiModel : public testing::Test {
 protected:
  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  void Store16(std::uint32_t offset, unsigned value) { chip_.registers.Store(offset, 2, value); }
  unsigned Load16(std::uint32_t offset) { return chip_.registers.Load(offset, 2); }

  void Await() {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Load16(0x408) & 0x6000, 0x0000U);
    EXPECT_EQ(Load16(0x408) & 0x4000, 0x4000U);
  }

  unsigned ReadPhy(unsigned phy, unsigned reg) {
    Store16(0x408, phy << 8 | 0xC0 | reg);
    Store16(0x408, phy << 8 | 0x40 | reg);
    Await();
    EXPECT_EQ(Load16(0x408) & 0x6000, 0x6000U);
    return Load16(0x40C);
  }

  void WritePhy(unsigned phy, unsigned reg, unsigned value) {
    Store16(0x40A, value);
    Store16(0x408, phy << 8 | 0xA0 | reg);
    Store16(0x408, phy << 8 | 0x20 | reg);
    Await();
  }

  RouterChip chip_;
};

TEST_F(MiiModel, IsReadyWithoutReadDataAtPowerOn) { EXPECT_EQ(Load16(0x408), 0x4000U); }

TEST_F(MiiModel, AnAccessIsOverAtTheFourthStatusLoad) {
  Store16(0x408, 0x01C2);
  EXPECT_EQ(Load16(0x408), 0x01C2U);
  Store16(0x408, 0x0142);
  EXPECT_EQ(Load16(0x408), 0x0142U);
  EXPECT_EQ(Load16(0x408), 0x0142U);
  EXPECT_EQ(Load16(0x408), 0x6142U);
  EXPECT_EQ(Load16(0x40C), 0x5642U);
}

TEST_F(MiiModel, ByteStoresReachAPhyToo) {
  const auto store8 = [this](std::uint32_t offset, unsigned value) {
    chip_.registers.Store(offset, 1, value);
  };
  store8(0x408, 0x02);
  store8(0x409, 0xC2);
  Await();
  EXPECT_EQ(Load16(0x408), 0x62C2U);
  EXPECT_EQ(Load16(0x40C), 0x5642U);

  store8(0x40A, 0x04);
  store8(0x40B, 0x01);
  store8(0x409, 0xA4);
  Await();
  EXPECT_EQ(ReadPhy(2, 4), 0x0401U);

  store8(0x408, 0x01);  // the start bit lies in the other byte
  EXPECT_EQ(Load16(0x408) & 0x4000, 0x4000U);
}

TEST_F(MiiModel, AWriteLeavesNoReadData) {
  (void)ReadPhy(1, 2);
  WritePhy(1, 4, 0x05E1);
  EXPECT_EQ(Load16(0x408) & 0x6000, 0x4000U);
  EXPECT_EQ(Load16(0x40C), 0x5642U);  // of the read before
}

TEST_F(MiiModel, StoresWithoutStartBeginNothingAndLeaveTheStatusAlone) {
  Store16(0x408, 0x6142);
  EXPECT_EQ(Load16(0x408), 0x4142U);
  Store16(0x408, 0x0020);
  EXPECT_EQ(Load16(0x408), 0x4020U);
}

TEST_F(MiiModel, PhysAnswerAtOneTwoAndFour) {
  for (unsigned phy = 0; phy < 32; ++phy) {
    const bool present = phy == 1 || phy == 2 || phy == 4;
    EXPECT_EQ(ReadPhy(phy, 2), present ? 0x5642U : 0xFFFFU) << phy;
    EXPECT_EQ(ReadPhy(phy, 3), present ? 0x0010U : 0xFFFFU) << phy;
  }
}

TEST_F(MiiModel, AWriteToAnAbsentPhyChangesNothing) {
  WritePhy(3, 4, 0x0000);
  EXPECT_EQ(ReadPhy(3, 4), 0xFFFFU);
  EXPECT_EQ(ReadPhy(1, 4), 0x01E1U);
  EXPECT_EQ(ReadPhy(2, 4), 0x01E1U);
}

TEST_F(MiiModel, EachPhyHasItsOwnRegisters) {
  WritePhy(1, 4, 0x0401);
  WritePhy(2, 4, 0x0402);
  WritePhy(4, 31, 0x1234);
  EXPECT_EQ(ReadPhy(1, 4), 0x0401U);
  EXPECT_EQ(ReadPhy(2, 4), 0x0402U);
  EXPECT_EQ(ReadPhy(4, 4), 0x01E1U);
  EXPECT_EQ(ReadPhy(4, 31), 0x1234U);
  EXPECT_EQ(ReadPhy(1, 31), 0x0000U);
}

TEST_F(MiiModel, StatusIdentifiersAndPartnerAbilityCannotBeWritten) {
  chip_.mii.SetLink(monitor::PortId::kWan, true);
  (void)ReadPhy(1, 1);
  for (unsigned reg : {1U, 2U, 3U, 5U}) {
    const unsigned before = ReadPhy(1, reg);
    WritePhy(1, reg, ~before & 0xFFFF);
    EXPECT_EQ(ReadPhy(1, reg), before) << reg;
  }
}

TEST_F(MiiModel, TheAdvertisementHasNoAcknowledgeBit) {
  WritePhy(1, 4, 0xFFFF);
  EXPECT_EQ(ReadPhy(1, 4), 0xAFFFU);
}

TEST_F(MiiModel, ControlResetRestoresTheRegistersAndClearsItself) {
  EXPECT_EQ(ReadPhy(1, 0), 0x3100U);
  WritePhy(1, 4, 0x0401);
  WritePhy(1, 0, 0x0300);  // restart of negotiation clears itself
  EXPECT_EQ(ReadPhy(1, 0), 0x0100U);
  WritePhy(1, 0, 0x8000);
  EXPECT_EQ(ReadPhy(1, 0), 0x3100U);
  EXPECT_EQ(ReadPhy(1, 4), 0x01E1U);
}

TEST_F(MiiModel, NothingIsAttachedAtPowerOn) {
  EXPECT_EQ(ReadPhy(1, 1), 0x7809U);
  EXPECT_EQ(ReadPhy(1, 1), 0x7809U);
  EXPECT_EQ(ReadPhy(1, 5), 0x0000U);
}

TEST_F(MiiModel, ALinkThatWasLostReadsAsDownOnce) {
  chip_.mii.SetLink(monitor::PortId::kLan, true);
  EXPECT_EQ(ReadPhy(2, 1), 0x7829U);
  EXPECT_EQ(ReadPhy(2, 1), 0x782DU);
  EXPECT_EQ(ReadPhy(2, 5), 0x45E1U);
  chip_.mii.SetLink(monitor::PortId::kLan, false);
  chip_.mii.SetLink(monitor::PortId::kLan, true);
  EXPECT_EQ(ReadPhy(2, 1), 0x7829U);
  EXPECT_EQ(ReadPhy(2, 1), 0x782DU);
  chip_.mii.SetLink(monitor::PortId::kLan, false);
  EXPECT_EQ(ReadPhy(2, 1), 0x7809U);
  EXPECT_EQ(ReadPhy(2, 1), 0x7809U);
  EXPECT_EQ(ReadPhy(1, 1), 0x7809U);  // another port
}

TEST_F(MiiModel, AStartWhileBusyIsComplainedAbout) {
  Store16(0x408, 0x01C0);
  Store16(0x408, 0x01C0);
  EXPECT_EQ(chip_.registers.Complaints().count("mii access started while busy"), 1U);
  chip_.registers.ForgetComplaints();
}

TEST_F(MiiModel, TheReadDataIsReadOnly) {
  Store16(0x40C, 0x1234);
  EXPECT_EQ(Load16(0x40C), 0x0000U);
  EXPECT_EQ(chip_.registers.Complaints().count("store to read-only MII_READ_DATA at 040c"), 1U);
  chip_.registers.ForgetComplaints();
}

TEST_F(MiiModel, FaultsHangItMakeItBusySlowOrFailing) {
  ASSERT_TRUE(chip_.SetFault("mii", {.kind = Fault::Kind::kBusy}));
  EXPECT_EQ(Load16(0x408), 0x0000U);

  ASSERT_TRUE(chip_.SetFault("mii", {.kind = Fault::Kind::kSlow, .loads = 7}));
  Store16(0x408, 0x01C2);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(Load16(0x408), 0x01C2U);
  EXPECT_EQ(Load16(0x408), 0x61C2U);

  ASSERT_TRUE(chip_.SetFault("mii", {.kind = Fault::Kind::kFail}));
  EXPECT_EQ(ReadPhy(1, 4), 0xFFFFU);
  WritePhy(1, 4, 0x0000);

  ASSERT_TRUE(chip_.SetFault("mii", {.kind = Fault::Kind::kHang}));
  Store16(0x408, 0x01C4);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(Load16(0x408), 0x01C4U);

  ASSERT_TRUE(chip_.SetFault("mii", {}));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Load16(0x408), 0x01C4U);
  EXPECT_EQ(Load16(0x408), 0x61C4U);  // continues where it hung
  EXPECT_EQ(Load16(0x40C), 0x01E1U);
}

TEST_F(MiiModel, SlowByNoLoadsAnAccessIsOverAtTheFirst) {
  ASSERT_TRUE(chip_.SetFault("mii", {.kind = Fault::Kind::kSlow, .loads = 0}));
  Store16(0x408, 0x01C2);
  EXPECT_EQ(Load16(0x408), 0x61C2U);
  EXPECT_EQ(Load16(0x40C), 0x5642U);
}

TEST_F(MiiModel, ResetEndsAnAccessAndKeepsTheLink) {
  chip_.mii.SetLink(monitor::PortId::kWan, true);
  WritePhy(1, 4, 0x0401);
  Store16(0x408, 0x01C4);
  chip_.Reset();
  EXPECT_EQ(Load16(0x408), 0x4000U);
  EXPECT_EQ(ReadPhy(1, 4), 0x01E1U);
  EXPECT_EQ(ReadPhy(1, 1), 0x7829U);
  EXPECT_EQ(ReadPhy(1, 1), 0x782DU);
}

}  // namespace
}  // namespace chip
