// What only a scripted bus can show of `clsfr`: failures after the first step, and that a
// refused line touches nothing.
#include <gtest/gtest.h>

#include "classifier/classifier.h"
#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

/// A read step of a rule by its two digits, up to the end of the wait.
std::string ReadStep(const std::string& index) {
  return "w8 0721 " + index + R"(
    r8  0720 03
    r8  0720 40
    w8  0720 44
    r8  0720 44
    w8  0720 40
    r8  0720 03
  )";
}

/// The loads after a read step of a rule without optional fields.
std::string PlainLoads(const std::string& control) {
  return "r32 071c " + control + R"(
    r8  0718 00
    r8  0719 30
    r8  0754 00
    r32 0724 00000000
    r8  0755 00
    r8  0752 00
    r8  0753 00
    r16 0756 0000
  )";
}

constexpr char kWriteRule3[] = R"(
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
    r8  0720 03
    r8  0720 40
    w8  0720 4c
    r8  0720 4c
    w8  0720 48
    unlock
    r8  0720 02
)";

/// A clear of the overflow bits up to the end of the wait; `bytes` are nine pairs of digits.
std::string ClearOverflow(const char* const (&bytes)[9]) {
  std::string transcript = "lock\n";
  for (unsigned i = 0; i < 9; ++i) {
    static constexpr const char* kOffsets[] = {"0728", "0729", "072a", "072b", "072c",
                                               "072d", "072e", "072f", "0730"};
    transcript += std::string("w8 ") + kOffsets[i] + " " + bytes[i] + "\n";
  }
  return transcript + R"(
    r8  0720 03
    r8  0720 40
    w8  0720 2c
    r8  0720 2c
    w8  0720 28
    unlock
    r8  0720 2b
  )";
}

constexpr char kCheckStep[] = R"(
    r8  0720 2b
    r8  0720 2b
    w8  0720 26
    r8  0720 26
    w8  0720 22
    r8  0720 23
)";

TEST(ClsfrCommand, AWriteReadsTheRuleBack) {
  ScriptedBus bus((kWriteRule3 + ReadStep("03") + PlainLoads("ff000201")).c_str());
  const Outcome outcome = RunLine("clsfr 3 = ff 0");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "INDEX:  3\tVALID\n\r"
            "INGRESS\tPOSITIVE\n\r"
            " DESIRED VLAN ID:  0  TAG:  0  FORCE:  0\n\r"
            " NEXT: ff\n\r"
            "\n\r");
}

TEST(ClsfrCommand, AReadBackMayFail) {
  ScriptedBus bus((std::string(kWriteRule3) + "w8 0721 03\n r8 0720 02").c_str());
  const Outcome outcome = RunLine("clsfr 3 = ff 0");
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "CLS Read failed\n\r");
}

TEST(ClsfrCommand, ADeletedRangeStopsAtTheFirstFailure) {
  const std::string transcript = ReadStep("03") + R"(
    r32 071c ff000201
    lock
    w8  0721 03
    w32 071c ff000200
    r8  0720 03
    r8  0720 40
    w8  0720 4c
    r8  0720 4c
    w8  0720 48
    unlock
    r8  0720 03
    w8  0721 04
    r8  0720 00
  )";
  ScriptedBus bus(transcript.c_str());
  const Outcome outcome = RunLine("clsfr d 3 5");
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "CLS Delete failed\n\r");
}

TEST(ClsfrCommand, ACounterThatWasWrittenMayFailToReadBack) {
  for (const char* const line : {"clsfr c 0 = 7", "clsfr c = 7"}) {
    ScriptedBus bus(R"(
      lock
      w8  0721 00
      w32 0724 00000007
      r8  0720 03
      r8  0720 40
      w8  0720 2c
      r8  0720 2c
      w8  0720 28
      w8  0720 03
      unlock
      r8  0720 02
      w8  0721 00
      r8  0720 02
    )");
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.output, "CLS Read Counter failed\n\r");
  }
}

TEST(ClsfrCommand, AClearOfAllOverflowBitsSendsAZeroNinthByte) {
  ScriptedBus bus(
      (ClearOverflow({"ff", "ff", "ff", "ff", "ff", "ff", "ff", "ff", "00"}) + "r8 0720 29")
          .c_str());
  const Outcome outcome = RunLine("clsfr o =");
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "CLS CheckOverflow failed\n\r");
}

TEST(ClsfrCommand, AnOverflowBitThatStaysSetIsShownWithoutALineEnd) {
  ScriptedBus bus(
      (ClearOverflow({"80", "00", "00", "00", "00", "00", "00", "00", "00"}) + kCheckStep + R"(
                     r8 0728 80
                     r8 0729 00
                     r8 072a 00
                     r8 072b 00
                     r8 072c 00
                     r8 072d 00
                     r8 072e 00
                     r8 072f 00
                     r8 0730 00
                   )")
          .c_str());
  const Outcome outcome = RunLine("clsfr o 7f =");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "OVERFLOW BITS: 1");
}

TEST(ClsfrCommand, TheNinthByteIsSentOnlyForRules38To3f) {
  {
    ScriptedBus bus(
        (ClearOverflow({"00", "00", "00", "00", "00", "00", "00", "00", "01"}) + "r8 0720 2a")
            .c_str());
    EXPECT_EQ(RunLine("clsfr o 38 =").output, "CLS CheckOverflow failed\n\r");
  }
  {
    ScriptedBus bus(
        (ClearOverflow({"00", "00", "00", "00", "00", "00", "00", "00", "80"}) + "r8 0720 2a")
            .c_str());
    EXPECT_EQ(RunLine("clsfr o 3f =").output, "CLS CheckOverflow failed\n\r");
  }
  ScriptedBus bus(
      (ClearOverflow({"00", "00", "00", "00", "00", "00", "00", "01", "00"}) + "r8 0720 2a")
          .c_str());
  EXPECT_EQ(RunLine("clsfr o 40 =").output, "CLS CheckOverflow failed\n\r");
}

TEST(ClsfrCommand, RulesWithoutAnOverflowBitRunTheOperationsAndReadAsClear) {
  for (const char* const line : {"clsfr o 37 =", "clsfr o 0 ="}) {
    ScriptedBus bus(
        (ClearOverflow({"00", "00", "00", "00", "00", "00", "00", "00", "00"}) + kCheckStep + R"(
                       r8 0728 ff
                       r8 0729 ff
                       r8 072a ff
                       r8 072b ff
                       r8 072c ff
                       r8 072d ff
                       r8 072e ff
                       r8 072f ff
                       r8 0730 ff
                     )")
            .c_str());
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, kDone);
    EXPECT_EQ(outcome.output, "OVERFLOW BITS: 0\n\r");
  }
}

TEST(ClsfrCommand, ACountPastTheEndOfTheChainReadsRule255) {
  ScriptedBus bus(("r8 0722 83\n" + ReadStep("03") + PlainLoads("00000201")).c_str());
  const Outcome outcome = RunLine("clsfr l 2");
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output,
            "INDEX:  3\tVALID\n\r"
            "INGRESS\tPOSITIVE\n\r"
            " DESIRED VLAN ID:  0  TAG:  0  FORCE:  0\n\r"
            " NEXT: ff\n\r"
            "\n\r"
            "CLS Read failed\n\r");
}

TEST(ClsfrCommand, ALinkToANonexistentRuleEndsTheListingInFailure) {
  ScriptedBus bus(("r8 0722 03\n" + ReadStep("03") + PlainLoads("80000001")).c_str());
  const Outcome outcome = RunLine("clsfr l");
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output,
            "INDEX:  3\tVALID\n\r"
            "INGRESS\tPOSITIVE\n\r"
            " DESIRED VLAN ID:  0  TAG:  0  FORCE:  0\n\r"
            " NEXT: 80\n\r"
            "\n\r"
            "CLS Read failed\n\r");
}

TEST(ClsfrCommand, RefusedLinesTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"clsfr 5 = 6 7 eg", "clsfr d 5 5", "clsfr c 5 = 1",
                      "clsfr o 5 =", "clsfr h = 5", "clsfr n 5 = 5", "clsfr f enable", "clsfr l 1"},
                     {"clsfr",
                      "clsfr g",
                      "clsfr 100",
                      "clsfr 5 g",
                      "clsfr 5 100",
                      "clsfr 5 =",
                      "clsfr 5 = 6",
                      "clsfr 100 = 6 7",
                      "clsfr g = 6 7",
                      "clsfr 5 : 6 7",
                      "clsfr 5 = 100 7",
                      "clsfr 5 = g 7",
                      "clsfr 5 = 6 123456789",
                      "clsfr 5 = 6 g",
                      "clsfr 5 6 7 8",
                      "clsfr 5 6 7 8 9",
                      "clsfr f on",
                      "clsfr f enable 1",
                      "clsfr d",
                      "clsfr d 80",
                      "clsfr d 80 0",
                      "clsfr d 100",
                      "clsfr d 5 100",
                      "clsfr d 5 1 1",
                      "clsfr l 100",
                      "clsfr l g",
                      "clsfr l 1 1",
                      "clsfr h",
                      "clsfr h 5",
                      "clsfr h =",
                      "clsfr h 5 5",
                      "clsfr h = 100",
                      "clsfr h = 5 5",
                      "clsfr n",
                      "clsfr n 5 =",
                      "clsfr n 5 5 5",
                      "clsfr n 100 = 5",
                      "clsfr n 5 = 100",
                      "clsfr n 5 = 5 5",
                      "clsfr c 80",
                      "clsfr c g",
                      "clsfr c 5 =",
                      "clsfr c = g",
                      "clsfr c = 123456789",
                      "clsfr c 80 = 5",
                      "clsfr c 5 7",
                      "clsfr c 5 5 5",
                      "clsfr c 5 = g",
                      "clsfr c 5 = 5 5",
                      "clsfr o g =",
                      "clsfr o 80 =",
                      "clsfr o 5 5",
                      "clsfr o = 5"});
}

TEST(ClsfrCommand, SomeBadOverflowLinesAreDoneInSilence) {
  ScriptedBus bus("");
  for (const char* const line : {"clsfr o 80", "clsfr o ff", "clsfr o g", "clsfr o 100",
                                 "clsfr o 5 = 5", "clsfr o 1 2 3 4", "clsfr o = = ="}) {
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, kDone) << line;
    EXPECT_EQ(outcome.output, "") << line;
  }
}

TEST(ClsfrCommand, BadKeywordLinesTouchNothing) {
  ScriptedBus bus("");
  for (const char* const keywords : {"bogus",
                                     "=",
                                     "eth",
                                     "eth 12345",
                                     "eth g",
                                     "sip",
                                     "sip 1.2.3.4",
                                     "sip 1.2.3 18",
                                     "sip 1.2.3.4 100",
                                     "dip",
                                     "dip 1.2.3.4",
                                     "dip 256.1.1.1 18",
                                     "dip 1.2.3.4 g",
                                     "sp",
                                     "sp 1",
                                     "sp 12345 1",
                                     "sp 1 123",
                                     "dp",
                                     "dp 1",
                                     "dp g 1",
                                     "dp 1 123",
                                     "pro",
                                     "pro 123",
                                     "ds",
                                     "ds 123",
                                     "tag",
                                     "tag 123",
                                     "dds",
                                     "dds 123",
                                     "dtag",
                                     "dtag 12",
                                     "int bogus",
                                     "int =",
                                     "class",
                                     "class 123",
                                     "syn",
                                     "syn 123",
                                     "fin",
                                     "fin 123",
                                     "ack",
                                     "ack 123",
                                     "drop",
                                     "drop middle",
                                     "smac",
                                     "smac 1234567890abc",
                                     "smac 11:22:33:44:55:66",
                                     "dmac",
                                     "dmac g",
                                     "ivlan",
                                     "ivlan 12345",
                                     "dvlan",
                                     "dvlan 1",
                                     "dvlan 1 1",
                                     "dvlan 12345 1 1",
                                     "dvlan 1 12 1",
                                     "dvlan 1 1 12",
                                     "itag",
                                     "itag 12",
                                     "rst",
                                     "rst 12",
                                     "eg eg cpu x",
                                     "wan"}) {
    // A line before it leaves words behind that would complete the keyword.
    ASSERT_EQ(RunLine("clsfr o 1 1 1 1 1 1 1 1 1 1").result, kDone);
    const Outcome outcome = RunLine(std::string("clsfr 5 = 6 7 ") + keywords);
    EXPECT_EQ(outcome.result, kUsage) << keywords;
    EXPECT_EQ(outcome.output, "") << keywords;
  }
}

/// The words that `keywords` makes of a rule: the stores up to a busy engine.
void ExpectWords(const char* keywords, const std::string& stores) {
  ScriptedBus bus(("lock\n w8 0721 00\n" + stores + "r8 0720 00\n unlock").c_str());
  const Outcome outcome = RunLine(std::string("clsfr 0 = 1 0 ") + keywords);
  EXPECT_EQ(outcome.output, "CLS Write failed\n\r") << keywords;
}

/// The stores of a rule with next 1, by what an interface set and the actions change.
std::string Stores(const char* control, const char* flags2) {
  return std::string("w32 0724 00000000\n w8 0718 00\n w8 0719 ") + flags2 + "\n w32 071c " +
         control + R"(
    w8  0752 00
    w8  0753 00
    w8  0755 00
    w8  0754 00
    w16 0756 0000
  )";
}

TEST(ClsfrCommand, InterfaceWordsGoToTheGroupInUpToFourPasses) {
  ExpectWords("int", Stores("01010001", "30"));
  ExpectWords("int wan", Stores("01010001", "31"));
  ExpectWords("int cpu dmz lan wan", Stores("01010001", "3f"));
  // One pass takes the four words in its order, the next one the second CPU.
  ExpectWords("int wan lan dmz cpu cpu", Stores("01010001", "3f"));
  // Four passes of one word each; the fifth is the action.
  ExpectWords("int cpu cpu cpu cpu cpu", Stores("01090001", "38"));
  // Four passes take up to sixteen words.
  ExpectWords("int wan lan dmz cpu wan lan dmz cpu wan lan dmz cpu wan lan dmz cpu cpu",
              Stores("01090001", "3f"));
  // A CPU before the group is the action, one after it an interface.
  ExpectWords("cpu int lan", Stores("01090001", "32"));
  ExpectWords("int lan cpu", Stores("01010001", "3a"));
  ExpectWords("int lan filter cpu", Stores("010d0001", "32"));
  // A later group starts anew.
  ExpectWords("int wan lan eg int dmz", Stores("01010001", "24"));
}

TEST(ClsfrCommand, AnInterfaceGroupEndsWithTheLine) {
  // Words of an earlier line follow the group.
  ASSERT_EQ(RunLine("clsfr o 1 1 1 1 wan lan dmz cpu").result, kDone);
  ExpectWords("int", Stores("01010001", "30"));
  ASSERT_EQ(RunLine("clsfr o 1 1 1 1 wan lan dmz cpu").result, kDone);
  ExpectWords("int lan", Stores("01010001", "32"));
}

TEST(ClsfrCommand, ActionsAndSenseStartAsIngressPositive) {
  ExpectWords("", Stores("01000001", "30"));
  ExpectWords("eg", Stores("01000001", "20"));
  ExpectWords("!", Stores("01000001", "10"));
  ExpectWords("! cc filter cpu eg", Stores("010e0001", "00"));
}

TEST(ClsfrCommand, CtrlCEndsAWaitThatNeverEnds) {
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    lock
    w8  0721 05
    w32 0724 00000007
    r8  0720 03
    r8  0720 40
    w8  0720 2c
    r8  0720 2c
    w8  0720 28
    w8  0720 03
    unlock
    r8  0720 01 x100000
  )");
  const Outcome outcome = RunLine("clsfr c 5 = 7");
  PressCtrlCInWaits(false);
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "CLS Write Counter failed\n\r");
}

}  // namespace
}  // namespace monitor
