#include "classifier/classifier.h"

#include <gtest/gtest.h>

#include <cstring>

#include "classifier/same_rule.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

/// A rule with nothing in it but what every rule has.
ClsRule PlainRule() {
  ClsRule rule{};
  rule.ingress = 1;
  rule.positive = 1;
  rule.next = 255;
  return rule;
}

/// Every optional field, with bits that the chip has no room for.
ClsRule FullRule() {
  ClsRule rule{};
  rule.fieldMask = 0xFEFF;
  rule.etherType = 0x0806;
  rule.sip = 0x0A000001;
  rule.sipMask = 0x18;
  rule.dip = 0xC0A80101;
  rule.dipMask = 0x20;
  rule.sport = 0x1234;
  rule.dport = 0x5678;
  rule.protocol = 0x11;
  rule.ds = 0xB8;
  rule.tag = 0xFE;
  rule.dds = 0xEA;
  rule.dtag = 0xFD;
  rule.syn = 0x80;
  rule.fin = 0;
  rule.interfaces = 0xFA;
  rule.dclass = 0xFE;
  rule.dropHigh = 2;
  rule.filter = 1;
  rule.toCpu = 0;
  rule.ingress = 0;
  rule.positive = 0x10;
  rule.next = 0x12;
  rule.counter = 0xDEADBEEF;
  rule.smac = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66};
  rule.dmac = {0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
  rule.vlanId = 0xFABC;
  rule.spMask = 0xFF;
  rule.dpMask = 0xE8;
  rule.ack = 1;
  rule.ingressTagged = 1;
  rule.smacValid = rule.dmacValid = rule.vlanValid = 1;
  rule.ackValid = rule.itagValid = rule.rstValid = 1;
  rule.desiredVlanId = 0xF123;
  rule.desiredVlanForce = 0xFF;
  rule.desiredVlanTag = 0xFE;
  rule.rst = 0xFE;
  rule.copyToCpu = 4;
  return rule;
}

TEST(Classifier, ReadLoadsTheWordsThenWhatTheySayIsPresent) {
  ScriptedBus bus(R"(
    w8  0721 7f
    r8  0720 f3        # ready
    r8  0720 fb
    w8  0720 f6        # (fb OR 04) AND f6
    r8  0720 f7
    w8  0720 f3        # go cleared
    r8  0720 a4 x3     # not done
    r8  0720 a5
    r32 071c 12bba9ff  # next 12, dtag 5, to CPU, copy, interfaces, dds 2a, tag to valid
    r8  0718 f6        # class, SYN 1, FIN 0, tag 6
    r8  0719 da        # drop high, negative, ingress, CPU and LAN
    r8  0754 f5        # RST 1, class 2, dds, tagged 0, ACK 1; junk above
    r16 0700 0806
    r32 0704 0a000001
    r8  0708 18
    r32 070c c0a80101
    r8  0710 20
    r16 0714 1234
    r16 0716 5678
    r8  0702 11
    r8  0703 b8
    r32 0724 deadbeef
    r8  0755 ff
    r8  0740 11
    r8  0741 22
    r8  0742 33
    r8  0743 44
    r8  0744 55
    r8  0745 66
    r8  0748 aa
    r8  0749 bb
    r8  074a cc
    r8  074b dd
    r8  074c ee
    r8  074d ff
    r16 0750 fabc
    r8  0752 e9        # five bits
    r8  0753 ff
    r16 0756 e123      # tag, no force, 123; junk above
  )");
  ClsRule rule{};
  ASSERT_EQ(ClsRead(127, rule), DriverStatus::kOk);
  EXPECT_EQ(rule.fieldMask, 0xFEFF);
  EXPECT_EQ(rule.etherType, 0x0806);
  EXPECT_EQ(rule.sip, 0x0A000001U);
  EXPECT_EQ(rule.sipMask, 0x18);
  EXPECT_EQ(rule.dip, 0xC0A80101U);
  EXPECT_EQ(rule.dipMask, 0x20);
  EXPECT_EQ(rule.sport, 0x1234);
  EXPECT_EQ(rule.dport, 0x5678);
  EXPECT_EQ(rule.protocol, 0x11);
  EXPECT_EQ(rule.ds, 0xB8);
  EXPECT_EQ(rule.tag, 6);
  EXPECT_EQ(rule.dds, 0x2A);
  EXPECT_EQ(rule.dtag, 5);
  EXPECT_EQ(rule.syn, 1);
  EXPECT_EQ(rule.fin, 0);
  EXPECT_EQ(rule.interfaces, 0x0A);
  EXPECT_EQ(rule.dclass, 2);
  EXPECT_EQ(rule.dropHigh, 1);
  EXPECT_EQ(rule.filter, 0);
  EXPECT_EQ(rule.toCpu, 1);
  EXPECT_EQ(rule.ingress, 1);
  EXPECT_EQ(rule.positive, 0);
  EXPECT_EQ(rule.next, 0x12);
  EXPECT_EQ(rule.counter, 0xDEADBEEFU);
  EXPECT_EQ(rule.smac, (MacAddress{0x11, 0x22, 0x33, 0x44, 0x55, 0x66}));
  EXPECT_EQ(rule.dmac, (MacAddress{0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}));
  EXPECT_EQ(rule.vlanId, 0xFABC);
  EXPECT_EQ(rule.spMask, 0x09);
  EXPECT_EQ(rule.dpMask, 0x1F);
  EXPECT_EQ(rule.ack, 1);
  EXPECT_EQ(rule.ingressTagged, 0);
  EXPECT_EQ(rule.smacValid, 1);
  EXPECT_EQ(rule.dmacValid, 1);
  EXPECT_EQ(rule.vlanValid, 1);
  EXPECT_EQ(rule.ackValid, 1);
  EXPECT_EQ(rule.itagValid, 1);
  EXPECT_EQ(rule.desiredVlanId, 0x123);
  EXPECT_EQ(rule.desiredVlanForce, 0);
  EXPECT_EQ(rule.desiredVlanTag, 1);
  EXPECT_EQ(rule.valid, 1);
  EXPECT_EQ(rule.rst, 1);
  EXPECT_EQ(rule.rstValid, 1);
  EXPECT_EQ(rule.copyToCpu, 0);  // set in the chip, never reported
}

TEST(Classifier, AReadOfAnEmptyRuleClearsAllButRstAndCopyToCpu) {
  ScriptedBus bus(R"(
    w8  0721 00
    r8  0720 03
    r8  0720 40
    w8  0720 44
    r8  0720 44
    w8  0720 40
    r8  0720 03
    r32 071c 7fe2fe00  # end of chain; values of desired tag and DS without their valid bits
    r8  0718 2f        # values of SYN, FIN and tag likewise
    r8  0719 4f        # drop precedence, interfaces
    r8  0754 3b        # RST, class, tagged, ACK
    r32 0724 00000007
    r8  0755 c0
    r8  0752 00
    r8  0753 00
    r16 0756 0000
  )");
  ClsRule rule;
  std::memset(&rule, 0x5A, sizeof(rule));
  ASSERT_EQ(ClsRead(0, rule), DriverStatus::kOk);
  EXPECT_EQ(rule.fieldMask, 0);
  EXPECT_EQ(rule.tag, 0);
  EXPECT_EQ(rule.dds, 0);
  EXPECT_EQ(rule.dtag, 0);
  EXPECT_EQ(rule.syn, 0);
  EXPECT_EQ(rule.fin, 0);
  EXPECT_EQ(rule.interfaces, 0);
  EXPECT_EQ(rule.dclass, 0);
  EXPECT_EQ(rule.dropHigh, 0);
  EXPECT_EQ(rule.ack, 0);
  EXPECT_EQ(rule.ingressTagged, 0);
  EXPECT_EQ(rule.etherType, 0);
  EXPECT_EQ(rule.smac, MacAddress{});
  EXPECT_EQ(rule.vlanId, 0);
  EXPECT_EQ(rule.rstValid, 0);
  EXPECT_EQ(rule.valid, 0);
  EXPECT_EQ(rule.next, 255);
  EXPECT_EQ(rule.counter, 7U);
  EXPECT_EQ(rule.rst, 0x5A);
  EXPECT_EQ(rule.copyToCpu, 0x5A);
}

TEST(Classifier, ANextByteOfFfEndsTheChainWithoutTheEndBitToo) {
  ScriptedBus bus(R"(
    w8  0721 00
    r8  0720 03
    r8  0720 40
    w8  0720 44
    r8  0720 44
    w8  0720 40
    r8  0720 03
    r32 071c ff000000
    r8  0718 00
    r8  0719 00
    r8  0754 00
    r32 0724 00000000
    r8  0755 00
    r8  0752 00
    r8  0753 00
    r16 0756 0000
  )");
  ClsRule rule{};
  ASSERT_EQ(ClsRead(0, rule), DriverStatus::kOk);
  EXPECT_EQ(rule.next, 255);
}

TEST(Classifier, ABusyEngineStopsAReadAfterTheIndexWithTheRecordUntouched) {
  for (const char* const command : {"00", "01", "02", "fc", "fd", "fe"}) {
    const std::string transcript = std::string("w8 0721 05\n r8 0720 ") + command;
    ScriptedBus bus(transcript.c_str());
    ClsRule rule = FullRule();
    EXPECT_EQ(ClsRead(5, rule), DriverStatus::kNotReady);
    EXPECT_TRUE(SameRule(rule, FullRule())) << command;
  }
}

TEST(Classifier, RulesAbove127AreRefusedUntouched) {
  ScriptedBus bus("");
  ClsRule rule{};
  std::uint32_t value = 0;
  for (const unsigned index : {128U, 255U, 0xFFFFU}) {
    EXPECT_EQ(ClsRead(index, rule), DriverStatus::kRefused);
    EXPECT_EQ(ClsWrite(index, rule), DriverStatus::kRefused);
    EXPECT_EQ(ClsDelete(index), DriverStatus::kRefused);
    EXPECT_EQ(ClsNext(index, 0), DriverStatus::kRefused);
    EXPECT_EQ(ClsReadCounter(index, value), DriverStatus::kRefused);
    EXPECT_EQ(ClsWriteCounter(index, value), DriverStatus::kRefused);
  }
  EXPECT_EQ(ClsWriteFirst(128), DriverStatus::kRefused);
  EXPECT_EQ(rule.valid, 0);
}

TEST(Classifier, OnlyTheLow16BitsOfARuleNumberCount) {
  ScriptedBus bus("w8 0721 05\n r8 0720 00");
  ClsRule rule{};
  EXPECT_EQ(ClsRead(0x10005, rule), DriverStatus::kNotReady);
}

TEST(Classifier, APlainRuleStoresNoRegisterOfAnAbsentField) {
  ClsClearShadow();
  ScriptedBus bus(R"(
    lock
    w8  0721 03
    w32 0724 00000000
    w8  0718 00
    w8  0719 30        # positive, ingress
    w32 071c ff000201  # next ff, end of chain, valid
    w8  0752 00
    w8  0753 00
    w8  0755 00
    w8  0754 00
    w16 0756 0000
    r8  0720 a7
    r8  0720 b3
    w8  0720 8d        # (b3 OR 0c) AND cd
    r8  0720 8d
    w8  0720 89
    unlock
    r8  0720 85
    r8  0720 86
  )");
  ClsRule rule = PlainRule();
  EXPECT_EQ(ClsWrite(3, rule), DriverStatus::kOk);
  EXPECT_EQ(rule.valid, 1);
  EXPECT_EQ(ClsShadow[3].valid, 1);
  EXPECT_EQ(ClsShadow[3].next, 255);
  EXPECT_EQ(ClsShadow[2].valid, 0);
}

TEST(Classifier, AFullRuleStoresEveryRegisterInOrderCutToItsField) {
  ScriptedBus bus(R"(
    lock
    w8  0721 7f
    w16 0700 0806
    w32 0704 0a000001
    w8  0708 18
    w32 070c c0a80101
    w8  0710 20
    w16 0714 1234
    w16 0716 5678
    w8  0702 11
    w8  0703 b8
    w32 0724 deadbeef
    w8  0718 f6        # class, SYN 1, FIN 0, tag 6
    w8  0719 ea        # drop high, positive, egress, CPU and LAN
    w32 071c 12b7a9ff  # next 12, dtag 5, filter, copy, interfaces, dds 2a, tag to valid
    w8  0740 11
    w8  0741 22
    w8  0742 33
    w8  0743 44
    w8  0744 55
    w8  0745 66
    w8  0748 aa
    w8  0749 bb
    w8  074a cc
    w8  074b dd
    w8  074c ee
    w8  074d ff
    w16 0750 fabc
    w8  0752 1f
    w8  0753 08
    w8  0755 3f
    w8  0754 17        # RST 0, class 2, dds, tagged 1, ACK 1
    w16 0756 1123      # no tag, force
    r8  0720 03
    r8  0720 33
    w8  0720 0d        # counter select and bit 4 cleared
    r8  0720 0d
    w8  0720 09
    unlock
    r8  0720 02
  )");
  ClsClearShadow();
  ClsRule rule = FullRule();
  EXPECT_EQ(ClsWrite(127, rule), DriverStatus::kOk);
  ClsRule written = FullRule();
  written.valid = 1;
  EXPECT_TRUE(SameRule(rule, written));
  EXPECT_TRUE(SameRule(ClsShadow[127], written));
  EXPECT_TRUE(SameRule(ClsShadow[126], {}));
}

TEST(Classifier, ABusyEngineStopsAWriteAfterTheDataRegisters) {
  ClsClearShadow();
  ScriptedBus bus(R"(
    lock
    w8  0721 03
    w32 0724 00000000
    w8  0718 00
    w8  0719 30
    w32 071c ff000201
    w8  0752 00
    w8  0753 00
    w8  0755 00
    w8  0754 00
    w16 0756 0000
    r8  0720 fd
    unlock
  )");
  ClsRule rule = PlainRule();
  EXPECT_EQ(ClsWrite(3, rule), DriverStatus::kNotReady);
  EXPECT_EQ(rule.valid, 0);
  EXPECT_EQ(ClsShadow[3].next, 0);
}

/// The stores of a rule without mask bits, with flag byte 3 and the extended valid bits.
std::string PlainWrite(const std::string& extended, const std::string& flags3) {
  return R"(
    lock
    w8  0721 00
    w32 0724 00000000
    w8  0718 00
    w8  0719 30
    w32 071c ff000201
    w8  0752 00
    w8  0753 00
    w8  0755 )" +
         extended + "\n w8 0754 " + flags3 + R"(
    w16 0756 0000
    r8  0720 03
    r8  0720 40
    w8  0720 4c
    r8  0720 4c
    w8  0720 48
    unlock
    r8  0720 02
  )";
}

TEST(Classifier, AckAndIngressTagRunIntoTheirNeighbours) {
  {
    ScriptedBus bus(PlainWrite("08", "03").c_str());
    ClsRule rule = PlainRule();
    rule.ackValid = 1;
    rule.ack = 3;
    EXPECT_EQ(ClsWrite(0, rule), DriverStatus::kOk);
  }
  {
    ScriptedBus bus(PlainWrite("10", "1e").c_str());
    ClsRule rule = PlainRule();
    rule.itagValid = 1;
    rule.ingressTagged = 0x0F;
    EXPECT_EQ(ClsWrite(0, rule), DriverStatus::kOk);
  }
  ScriptedBus bus(PlainWrite("38", "fe").c_str());
  ClsRule rule = PlainRule();
  rule.ackValid = rule.itagValid = rule.rstValid = 1;
  rule.ack = 0x80;
  rule.ingressTagged = 0xFF;  // shifted by one and cut to the register
  rule.rst = 3;
  EXPECT_EQ(ClsWrite(0, rule), DriverStatus::kOk);
}

TEST(Classifier, ANextAbove255IsCutAndDoesNotEndTheChain) {
  ScriptedBus bus(R"(
    lock
    w8  0721 00
    w32 0724 00000000
    w8  0718 00
    w8  0719 30
    w32 071c ff000001
    w8  0752 00
    w8  0753 00
    w8  0755 00
    w8  0754 00
    w16 0756 0000
    r8  0720 00
    unlock
  )");
  ClsRule rule = PlainRule();
  rule.next = 0x1FF;
  EXPECT_EQ(ClsWrite(0, rule), DriverStatus::kNotReady);
}

TEST(Classifier, DeleteClearsTheValidBitAndNothingElse) {
  ClsClearShadow();
  ClsShadow[9] = PlainRule();
  ClsShadow[9].valid = 1;
  ScriptedBus bus(R"(
    w8  0721 09
    r8  0720 03
    r8  0720 40
    w8  0720 44
    r8  0720 44
    w8  0720 40
    r8  0720 03
    r32 071c a5a5a5a5
    lock
    w8  0721 09
    w32 071c a5a5a5a4
    r8  0720 03
    r8  0720 13
    w8  0720 0d
    r8  0720 0d
    w8  0720 09
    unlock
    r8  0720 03
  )");
  EXPECT_EQ(ClsDelete(9), DriverStatus::kOk);
  EXPECT_EQ(ClsShadow[9].valid, 0);
  EXPECT_EQ(ClsShadow[9].next, 255);
}

TEST(Classifier, ADeleteMayFindTheEngineBusyTwice) {
  ClsClearShadow();
  ClsShadow[9].valid = 1;
  {
    ScriptedBus bus("w8 0721 09\n r8 0720 02");
    EXPECT_EQ(ClsDelete(9), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    w8  0721 09
    r8  0720 03
    r8  0720 40
    w8  0720 44
    r8  0720 44
    w8  0720 40
    r8  0720 01
    r32 071c 00000001
    lock
    w8  0721 09
    w32 071c 00000000
    r8  0720 01
    unlock
  )");
  EXPECT_EQ(ClsDelete(9), DriverStatus::kNotReady);
  EXPECT_EQ(ClsShadow[9].valid, 1);
}

TEST(Classifier, TheChainHeadIsSevenBitsWithoutAHandshake) {
  ScriptedBus bus("r8 0722 85\n r8 0722 7f\n w8 0722 7f\n w8 0722 00");
  std::uint16_t head = 0xFFFF;
  EXPECT_EQ(ClsReadFirst(head), DriverStatus::kOk);
  EXPECT_EQ(head, 5);
  EXPECT_EQ(ClsReadFirst(head), DriverStatus::kOk);
  EXPECT_EQ(head, 127);
  EXPECT_EQ(ClsWriteFirst(127), DriverStatus::kOk);
  EXPECT_EQ(ClsWriteFirst(0), DriverStatus::kOk);
}

TEST(Classifier, ARelinkKeepsTheRestOfTheControlWord) {
  ScriptedBus bus(R"(
    w8  0721 05
    r8  0720 03
    r8  0720 40
    w8  0720 44
    r8  0720 44
    w8  0720 40
    r8  0720 03
    r32 071c ffffffff
    lock
    w8  0721 05
    w32 071c 12fffdff
    r8  0720 03
    r8  0720 40
    w8  0720 4c
    r8  0720 4c
    w8  0720 48
    unlock
    r8  0720 00
    r8  0720 02
  )");
  EXPECT_EQ(ClsNext(5, 0x12), DriverStatus::kOk);
}

TEST(Classifier, ARelinkOfRule70WritesRule6) {
  ScriptedBus bus(R"(
    w8  0721 46
    r8  0720 03
    r8  0720 40
    w8  0720 44
    r8  0720 44
    w8  0720 40
    r8  0720 03
    r32 071c 12a5a5a5
    lock
    w8  0721 06
    w32 071c 00a5a7a5  # to the end of the chain: the link becomes 0
    r8  0720 03
    r8  0720 40
    w8  0720 4c
    r8  0720 4c
    w8  0720 48
    unlock
    r8  0720 02
  )");
  EXPECT_EQ(ClsNext(70, 255), DriverStatus::kOk);
}

TEST(Classifier, ARelinkMayFindTheEngineBusyTwice) {
  {
    ScriptedBus bus("w8 0721 7f\n r8 0720 01");
    EXPECT_EQ(ClsNext(127, 0), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    w8  0721 7f
    r8  0720 03
    r8  0720 40
    w8  0720 44
    r8  0720 44
    w8  0720 40
    r8  0720 01
    r32 071c 00000200
    lock
    w8  0721 3f
    w32 071c fe000000
    r8  0720 02
    unlock
  )");
  EXPECT_EQ(ClsNext(127, 0x1FE), DriverStatus::kNotReady);
}

TEST(Classifier, ACounterIsReadWithTheRule) {
  ScriptedBus bus(R"(
    w8  0721 05
    r8  0720 03
    r8  0720 b3
    w8  0720 b6        # bits 4 and 5 stay
    r8  0720 b6
    w8  0720 b2
    r8  0720 b3
    r32 0724 12345678
  )");
  std::uint32_t value = 0;
  EXPECT_EQ(ClsReadCounter(5, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0x12345678U);
}

TEST(Classifier, ACounterWriteLeavesBothDoneBitsSetBeforeTheLockIsReleased) {
  ScriptedBus bus(R"(
    lock
    w8  0721 05
    w32 0724 12345678
    r8  0720 a7
    r8  0720 d3
    w8  0720 3c        # (d3 AND 30) OR 2c
    r8  0720 bd
    w8  0720 b9
    w8  0720 03
    unlock
    r8  0720 01
    r8  0720 02
  )");
  EXPECT_EQ(ClsWriteCounter(5, 0x12345678), DriverStatus::kOk);
}

TEST(Classifier, ABusyEngineStopsTheCounterSteps) {
  std::uint32_t value = 0x55;
  {
    ScriptedBus bus("w8 0721 05\n r8 0720 01");
    EXPECT_EQ(ClsReadCounter(5, value), DriverStatus::kNotReady);
    EXPECT_EQ(value, 0x55U);
  }
  ScriptedBus bus("lock\n w8 0721 05\n w32 0724 00000055\n r8 0720 fe\n unlock");
  EXPECT_EQ(ClsWriteCounter(5, value), DriverStatus::kNotReady);
}

TEST(Classifier, TheOverflowMapIsReadUnderWhateverIndex) {
  ScriptedBus bus(R"(
    r8  0720 03
    r8  0720 a3
    w8  0720 a6        # (a3 OR 04) AND f6
    r8  0720 a6
    w8  0720 a2
    r8  0720 a2
    r8  0720 a3
    r8  0728 80
    r8  0729 01
    r8  072a 02
    r8  072b 03
    r8  072c 04
    r8  072d 05
    r8  072e 06
    r8  072f 07
    r8  0730 08
  )");
  ClsOverflowMap map{};
  EXPECT_EQ(ClsCheckOverflow(map), DriverStatus::kOk);
  EXPECT_EQ(map, (ClsOverflowMap{0x80, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(Classifier, AnOverflowClearIsACounterWriteWithoutTheLastStore) {
  ScriptedBus bus(R"(
    lock
    w8  0728 80
    w8  0729 01
    w8  072a 02
    w8  072b 03
    w8  072c 04
    w8  072d 05
    w8  072e 06
    w8  072f 07
    w8  0730 08
    r8  0720 03
    r8  0720 c3
    w8  0720 2c
    r8  0720 2c
    w8  0720 28
    unlock
    r8  0720 28
    r8  0720 2b
  )");
  EXPECT_EQ(ClsClearOverflow({0x80, 1, 2, 3, 4, 5, 6, 7, 8}), DriverStatus::kOk);
}

TEST(Classifier, ABusyEngineStopsTheOverflowSteps) {
  {
    ScriptedBus bus("r8 0720 fe");
    ClsOverflowMap map{};
    EXPECT_EQ(ClsCheckOverflow(map), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    lock
    w8  0728 00
    w8  0729 00
    w8  072a 00
    w8  072b 00
    w8  072c 00
    w8  072d 00
    w8  072e 00
    w8  072f 00
    w8  0730 00
    r8  0720 fd
    unlock
  )");
  EXPECT_EQ(ClsClearOverflow({}), DriverStatus::kNotReady);
}

TEST(Classifier, TheFilterIsBit5OfTheFilterByteAndNothingElse) {
  ScriptedBus bus(R"(
    r8 0105 20
    r8 0105 df
    lock
    r8 0105 85
    w8 0105 a5
    unlock
    lock
    r8 0105 a5
    w8 0105 85
    unlock
  )");
  std::uint8_t on = 9;
  ClsReadFilter(on);
  EXPECT_EQ(on, 1);
  ClsReadFilter(on);
  EXPECT_EQ(on, 0);
  ClsWriteFilter(2);
  ClsWriteFilter(0);
}

TEST(Classifier, TheShadowIsClearedWhole) {
  ClsShadow[0].fieldMask = 1;
  ClsShadow[127].copyToCpu = 1;
  ClsClearShadow();
  EXPECT_EQ(ClsShadow[0].fieldMask, 0);
  EXPECT_EQ(ClsShadow[127].copyToCpu, 0);
}

}  // namespace
}  // namespace monitor
