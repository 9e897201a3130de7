#include "system/reg.h"

#include <gtest/gtest.h>

#include <string>

#include "support/command_line.h"
#include "support/keys.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

/// Runs a line that has to be refused with no more bus traffic than the transcript.
void ExpectRefused(const std::string& line, const char* transcript = "") {
  for (const char* const complete : {"reg 0", "reg 0 1", "reg 0 = 1 1", "reg 0 2 = 1 1"}) {
    const ScriptedBus bus(transcript);
    LeaveWords(complete);
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, kUsage) << line << ", after " << complete;
    EXPECT_EQ(outcome.output, "") << line << ", after " << complete;
  }
}

/// Runs a line that has to succeed with exactly this traffic; what it prints.
std::string Output(const std::string& line, const char* transcript) {
  const ScriptedBus bus(transcript);
  const Outcome outcome = RunLine(line);
  EXPECT_EQ(outcome.result, kDone) << line;
  return outcome.output;
}

TEST(Reg, AnOffsetAloneDumpsOneByte) {
  EXPECT_EQ(Output("reg 0", "r8 0000 a7"),
            "50000000: A7 .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
  EXPECT_EQ(Output("reg 0x10", "r8 0010 00"),
            "50000010: 00 .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST(Reg, ACountDumpsThatManyBytes) {
  EXPECT_EQ(Output("reg 0000011e 3", "r8 011e 01\n r8 011f 23\n r8 0120 45"),
            "50000110: .. .. .. .. .. .. .. .. .. .. .. .. .. .. 01 23 \n\r"
            "50000120: 45 .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST(Reg, NumbersAreHexadecimal) {
  EXPECT_EQ(Output("reg ff 10", R"(
              r8 00ff 00
              r8 0100 01
              r8 0101 02
              r8 0102 03
              r8 0103 04
              r8 0104 05
              r8 0105 06
              r8 0106 07
              r8 0107 08
              r8 0108 09
              r8 0109 0a
              r8 010a 0b
              r8 010b 0c
              r8 010c 0d
              r8 010d 0e
              r8 010e 0f
            )"),
            "500000F0: .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. 00 \n\r"
            "50000100: 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F .. \n\r");
}

TEST(Reg, ValuesAreStoredAllBeforeTheyAreReadBack) {
  EXPECT_EQ(Output("reg 10 = 1 2 3", R"(
              w8 0010 01
              w8 0011 02
              w8 0012 03
              r8 0010 f1
              r8 0011 f2
              r8 0012 f3
            )"),
            "50000010: F1 F2 F3 .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST(Reg, AnEqualSignNeedsNoSpaces) {
  EXPECT_EQ(Output("reg 10=ff", "w8 0010 ff\n r8 0010 ff"),
            "50000010: FF .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST(Reg, ACountRepeatsTheValues) {
  EXPECT_EQ(Output("reg 10 2 = 5", "w8 0010 05\n w8 0011 05\n r8 0010 05\n r8 0011 05"),
            "50000010: 05 05 .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
  EXPECT_EQ(Output("reg 100 5 = 0 ff", R"(
              w8 0100 00
              w8 0101 ff
              w8 0102 00
              w8 0103 ff
              w8 0104 00
              r8 0100 10
              r8 0101 11
              r8 0102 12
              r8 0103 13
              r8 0104 14
            )"),
            "50000100: 10 11 12 13 14 .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST(Reg, ACountBelowTheNumberOfValuesLeavesTheRestUnparsed) {
  EXPECT_EQ(Output("reg 10 2 = 1 2 zz", "w8 0010 01\n w8 0011 02\n r8 0010 01\n r8 0011 02"),
            "50000010: 01 02 .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST(Reg, ABadValueStopsTheStoresAfterTheValuesBeforeIt) {
  ExpectRefused("reg 10 = 123");
  ExpectRefused("reg 10 = 1 2 xx 4", "w8 0010 01\n w8 0011 02");
  ExpectRefused("reg 10 = 1 = 2", "w8 0010 01");
  ExpectRefused("reg 10 5 = 1 123", "w8 0010 01");
  ExpectRefused("reg 10 8 = g");
}

TEST(Reg, WordsThatDoNotFitAreRefusedUntouched) {
  ExpectRefused("reg");
  ExpectRefused("reg g");
  ExpectRefused("reg =");
  ExpectRefused("reg 0x");
  ExpectRefused("reg 000000001");
  ExpectRefused("reg 0 g");
  ExpectRefused("reg 0 =");
  ExpectRefused("reg 0 000000001");
  ExpectRefused("reg 0 1 2");
  ExpectRefused("reg 0 1 2 =");
  ExpectRefused("reg 0 1 2 = 3");
  ExpectRefused("reg g = 1");
  ExpectRefused("reg 0 g = 1");
  ExpectRefused("reg 0 : 1");
}

TEST(Reg, AValueListMayNotBeEmpty) {
  ExpectRefused("reg 0 1 =");
  ExpectRefused("reg 0 0 =");
}

TEST(Reg, TheLastByteOfTheWindow) {
  EXPECT_EQ(Output("reg 1fff", "r8 1fff a7"),
            "50001FF0: .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. A7 \n\r");
  EXPECT_EQ(Output("reg 1ffe 2", "r8 1ffe 01\n r8 1fff 02"),
            "50001FF0: .. .. .. .. .. .. .. .. .. .. .. .. .. .. 01 02 \n\r");
  EXPECT_EQ(Output("reg 1ffe = 3 4", "w8 1ffe 03\n w8 1fff 04\n r8 1ffe 03\n r8 1fff 04"),
            "50001FF0: .. .. .. .. .. .. .. .. .. .. .. .. .. .. 03 04 \n\r");
}

TEST(Reg, RangesThatLeaveTheWindowAreRefusedUntouched) {
  ExpectRefused("reg 2000");
  ExpectRefused("reg 1fff 2");
  ExpectRefused("reg 1ffe 4");
  ExpectRefused("reg 0 2001");
  ExpectRefused("reg 1fff = 1 2");
  ExpectRefused("reg 2000 = 1");
  ExpectRefused("reg 1fff 2 = 1");
  ExpectRefused("reg 50000000");
}

TEST(Reg, RangesAreMeasuredWithoutWrapping) {
  ExpectRefused("reg ffffffff");
  ExpectRefused("reg ffffffff 1");
  ExpectRefused("reg ffffffff 2");
  ExpectRefused("reg 2 ffffffff");
  ExpectRefused("reg 1 ffffffff = 5");
  ExpectRefused("reg 80000000 80000000");
  ExpectRefused("reg fffffff0 10 = 1");
  ExpectRefused("reg 0 80000000 = 1");
}

TEST(Reg, TheRangeIsTestedBeforeTheValues) { ExpectRefused("reg 1fff = 1 zz"); }

TEST(Reg, ACountOfZeroTouchesNothing) {
  EXPECT_EQ(Output("reg 10 0", ""), "");
  EXPECT_EQ(Output("reg 11 0", ""),
            "50000010: .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
  EXPECT_EQ(Output("reg 10 0 = 5", ""), "");
  EXPECT_EQ(Output("reg 10 0 = zz", ""), "");
  EXPECT_EQ(Output("reg 2000 0", ""), "");
  ExpectRefused("reg 2001 0");
  ExpectRefused("reg ffffffff 0");
}

TEST(Reg, TheWholeWindowMayBeDumped) {
  std::string transcript;
  std::string screen;
  constexpr char kDigits[] = "0123456789ABCDEF";
  for (unsigned offset = 0; offset < 0x2000; ++offset) {
    const std::string digits{kDigits[offset >> 12], kDigits[offset >> 8 & 15],
                             kDigits[offset >> 4 & 15], kDigits[offset & 15]};
    transcript += "r8 " + digits + " 5a\n";
    if (offset % 16 == 0) screen += "5000" + digits + ": " + Times(16, "5A ") + "\n\r";
  }
  EXPECT_EQ(Output("reg 0 2000", transcript.c_str()), screen);
}

TEST(Reg, AsManyValuesAsALineHolds) {
  std::string transcript;
  for (const char* const access : {"w8 ", "r8 "}) {
    for (unsigned i = 0; i < 124; ++i) {
      constexpr char kDigits[] = "0123456789abcdef";
      transcript += access + std::string{kDigits[i >> 4], kDigits[i & 15]} + " 07\n";
    }
  }
  EXPECT_EQ(Output("reg 0=" + Times(123, "7 ") + "7", transcript.c_str()).size(), 8 * 60U);
}

}  // namespace
}  // namespace monitor
