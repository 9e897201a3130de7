#include "system/chip_select.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

/// Runs the handler that no row of the command table leads to.
Outcome RunSdram(std::vector<std::string> words) {
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  (void)TakeOutput();
  const int result = SdramTypeCommand(static_cast<int>(argv.size()), argv.data());
  return {result, TakeOutput()};
}

TEST(ChipSelect, PlainOnesHaveAStartAndAMaskSizeOfFourBits) {
  ScriptedBus bus(R"(
    r16 0110 1234
    r8  0112 a5
    r16 0114 5678
    r8  0116 5a
  )");
  ChipSelect cs{.start = 0, .maskSize = 0, .wait = 0x77};
  EXPECT_EQ(CsRead(0, cs), DriverStatus::kOk);
  EXPECT_EQ(cs.start, 0x1234);
  EXPECT_EQ(cs.maskSize, 5);
  EXPECT_EQ(CsRead(1, cs), DriverStatus::kOk);
  EXPECT_EQ(cs.start, 0x5678);
  EXPECT_EQ(cs.maskSize, 0x0A);
  EXPECT_EQ(cs.wait, 0x77);
}

TEST(ChipSelect, TheOthersHaveAWaitOfFourBits) {
  ScriptedBus bus(R"(
    r16 0118 1234
    r8  011a a5
    r8  011b f6
    r16 011c 2345
    r8  011e a7
    r8  011f f8
    r16 0120 3456
    r8  0122 a9
    r8  0123 fa
  )");
  ChipSelect cs{};
  EXPECT_EQ(CsRead(3, cs), DriverStatus::kOk);
  EXPECT_EQ(cs.start, 0x1234);
  EXPECT_EQ(cs.maskSize, 5);
  EXPECT_EQ(cs.wait, 6);
  EXPECT_EQ(CsRead(4, cs), DriverStatus::kOk);
  EXPECT_EQ(cs.start, 0x2345);
  EXPECT_EQ(cs.maskSize, 7);
  EXPECT_EQ(cs.wait, 8);
  EXPECT_EQ(CsRead(5, cs), DriverStatus::kOk);
  EXPECT_EQ(cs.start, 0x3456);
  EXPECT_EQ(cs.maskSize, 9);
  EXPECT_EQ(cs.wait, 0x0A);
}

TEST(ChipSelect, TheAlternativeStartIsReadInTwoHalves) {
  ScriptedBus bus(R"(
    r16 0124 12ff      # bits 15 to 8 count
    r16 0124 ff34      # bits 7 to 0 count
  )");
  ChipSelect cs{.start = 0, .maskSize = 0x77, .wait = 0x88};
  EXPECT_EQ(CsRead(6, cs), DriverStatus::kOk);
  EXPECT_EQ(cs.start, 0x1234);
  EXPECT_EQ(cs.maskSize, 0x77);
  EXPECT_EQ(cs.wait, 0x88);
}

TEST(ChipSelect, WritesStoreWholeBytesInOneBracket) {
  ScriptedBus bus(R"(
    lock
    w16 0110 1234
    w8  0112 0f
    unlock
    lock
    w16 0114 2345
    w8  0116 00
    unlock
    lock
    w16 0118 3456
    w8  011a 01
    w8  011b 0f
    unlock
    lock
    w16 011c 4567
    w8  011e 02
    w8  011f 0e
    unlock
    lock
    w16 0120 5678
    w8  0122 03
    w8  0123 0d
    unlock
  )");
  EXPECT_EQ(CsWrite(0, {.start = 0x1234, .maskSize = 15, .wait = 7}), DriverStatus::kOk);
  EXPECT_EQ(CsWrite(1, {.start = 0x2345, .maskSize = 0, .wait = 7}), DriverStatus::kOk);
  EXPECT_EQ(CsWrite(3, {.start = 0x3456, .maskSize = 1, .wait = 15}), DriverStatus::kOk);
  EXPECT_EQ(CsWrite(4, {.start = 0x4567, .maskSize = 2, .wait = 14}), DriverStatus::kOk);
  EXPECT_EQ(CsWrite(5, {.start = 0x5678, .maskSize = 3, .wait = 13}), DriverStatus::kOk);
}

TEST(ChipSelect, TheAlternativeStartIsWrittenWithoutTheBracket) {
  ScriptedBus bus("w16 0124 abcd");
  EXPECT_EQ(CsWrite(6, {.start = 0xABCD, .maskSize = 1, .wait = 1}), DriverStatus::kOk);
}

TEST(ChipSelect, NumbersThatDoNotExistAreRefusedUntouched) {
  ScriptedBus bus("");
  for (const unsigned number : {2U, 7U, 255U}) {
    ChipSelect cs{.start = 1, .maskSize = 2, .wait = 3};
    EXPECT_EQ(CsRead(number, cs), DriverStatus::kRefused);
    EXPECT_EQ(CsWrite(number, cs), DriverStatus::kRefused);
    EXPECT_EQ(cs.start, 1);
  }
}

TEST(ChipSelect, LongMaskSizesAndWaitsAreRefusedForEveryNumber) {
  ScriptedBus bus("");
  for (const unsigned number : {0U, 1U, 3U, 4U, 5U, 6U}) {
    EXPECT_EQ(CsWrite(number, {.start = 1, .maskSize = 16, .wait = 0}), DriverStatus::kRefused);
    EXPECT_EQ(CsWrite(number, {.start = 1, .maskSize = 255, .wait = 0}), DriverStatus::kRefused);
    EXPECT_EQ(CsWrite(number, {.start = 1, .maskSize = 0, .wait = 16}), DriverStatus::kRefused);
    EXPECT_EQ(CsWrite(number, {.start = 1, .maskSize = 0, .wait = 255}), DriverStatus::kRefused);
  }
}

TEST(SdramType, HasThreeFieldsInOneLoad) {
  ScriptedBus bus("r8 0130 b6\n r8 0130 49");
  SdramType type{};
  EXPECT_EQ(SdramTypeRead(type), DriverStatus::kOk);
  EXPECT_EQ(type.chipSelect, 0);
  EXPECT_EQ(type.column, 5);
  EXPECT_EQ(type.row, 5);
  EXPECT_EQ(SdramTypeRead(type), DriverStatus::kOk);
  EXPECT_EQ(type.chipSelect, 1);
  EXPECT_EQ(type.column, 2);
  EXPECT_EQ(type.row, 2);
}

TEST(SdramType, IsWrittenWhole) {
  ScriptedBus bus(R"(
    lock
    w8 0130 45
    unlock
    lock
    w8 0130 00
    unlock
  )");
  EXPECT_EQ(SdramTypeWrite({.chipSelect = 1, .column = 1, .row = 2}), DriverStatus::kOk);
  EXPECT_EQ(SdramTypeWrite({.chipSelect = 0, .column = 0, .row = 0}), DriverStatus::kOk);
}

TEST(SdramType, CodesOutOfRangeAreRefusedUntouched) {
  ScriptedBus bus("");
  EXPECT_EQ(SdramTypeWrite({.chipSelect = 2, .column = 0, .row = 0}), DriverStatus::kRefused);
  EXPECT_EQ(SdramTypeWrite({.chipSelect = 0, .column = 2, .row = 0}), DriverStatus::kRefused);
  EXPECT_EQ(SdramTypeWrite({.chipSelect = 0, .column = 0, .row = 3}), DriverStatus::kRefused);
}

TEST(CsCommand, ShowsByTheFirstCharacterOfTheWord) {
  ScriptedBus bus(R"(
    r16 0110 0100
    r8  0112 f5
    r16 0114 ffff
    r8  0116 ff
    r16 0118 1000
    r8  011a 05
    r8  011b 02
    r16 011c 0000
    r8  011e 00
    r8  011f 00
    r16 0120 00ab
    r8  0122 fc
    r8  0123 fd
    r16 0124 1200
    r16 0124 0034
  )");
  EXPECT_EQ(RunLine("cs 0").output, "CS0 START:  100\tCS0 MASKSIZE:    5\n\r");
  EXPECT_EQ(RunLine("cs 100").output, "CS1 START: ffff\tCS1 MASKSIZE:    f\n\r");
  EXPECT_EQ(RunLine("cs 3x").output, "CS3 START: 1000\tCS3 MASKSIZE:    5\tCS3 WAIT:    2\n\r");
  EXPECT_EQ(RunLine("cs 4").output, "CS4 START:    0\tCS4 MASKSIZE:    0\tCS4 WAIT:    0\n\r");
  EXPECT_EQ(RunLine("cs 5").output, "CS5 START:   ab\tCS5 MASKSIZE:    c\tCS5 WAIT:    d\n\r");
  const Outcome outcome = RunLine("cs alternative");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "ALTERNATIVE START: 1234\n\r");
}

TEST(CsCommand, WritesShowWhatReadsBack) {
  ScriptedBus bus(R"(
    w16 0124 1000
    r16 0124 20ff
    r16 0124 ff01
    lock
    w16 0114 1000
    w8  0116 05
    unlock
    r16 0114 2000
    r8  0116 f6
    lock
    w16 0118 1000
    w8  011a 05
    w8  011b 02
    unlock
    r16 0118 2000
    r8  011a f6
    r8  011b f3
  )");
  EXPECT_EQ(RunLine("cs a = 1000").output, "ALTERNATIVE START: 2001\n\r");
  EXPECT_EQ(RunLine("cs 1 = 1000 5").output, "CS1 START: 2000\tCS1 MASKSIZE:    6\n\r");
  const Outcome outcome = RunLine("cs 3 = 1000 5 2");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "CS3 START: 2000\tCS3 MASKSIZE:    6\tCS3 WAIT:    3\n\r");
}

TEST(CsCommand, LongMaskSizesAndWaitsAreTheDriversToRefuse) {
  ScriptedBus bus("");
  for (const char* const line : {"cs 0 = 1000 10", "cs 1 = 1000 ff", "cs 3 = 1000 10 0",
                                 "cs 4 = 1000 0 10", "cs 5 = 1000 ff ff"}) {
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, kFailed) << line;
    EXPECT_EQ(outcome.output, "CS Write failed\n\r") << line;
  }
}

TEST(CsCommand, RefusesOtherWordsUntouched) {
  ScriptedBus bus("");
  ExpectLinesRefused({"cs 3 = 1 1 1", "cs a = 1"}, {"cs",
                                                    "cs 2",
                                                    "cs 6",
                                                    "cs b",
                                                    "cs =",
                                                    "cs a =",
                                                    "cs 0 =",
                                                    "cs aa = 1000",
                                                    "cs 0 = 1000",
                                                    "cs a 1 1000",
                                                    "cs a = 12345",
                                                    "cs a = g",
                                                    "cs a = 1000 5",
                                                    "cs 3 = 1000 5",
                                                    "cs 00 = 1000 5",
                                                    "cs 2 = 1000 5",
                                                    "cs 0 1 1000 5",
                                                    "cs 0 = 12345 5",
                                                    "cs 0 = 1000 100",
                                                    "cs 0 = g 5",
                                                    "cs 0 = 1000 g",
                                                    "cs 0 = 1000 5 2",
                                                    "cs 3x = 1000 5 2",
                                                    "cs 6 = 1000 5 2",
                                                    "cs 3 1 1000 5 2",
                                                    "cs 3 = 12345 5 2",
                                                    "cs 3 = 1000 100 2",
                                                    "cs 3 = 1000 5 100",
                                                    "cs 3 = 1000 5 g",
                                                    "cs 3 = 1000 5 2 1"});
}

TEST(SdramTypeCommand, ShowsWhatTheCodesStandFor) {
  ScriptedBus bus("r8 0130 02\n r8 0130 45\n r8 0130 ff");
  EXPECT_EQ(RunSdram({"SDRAM"}).output, "CS:  1\tCOLUMN:  8\tROW:  b\n\r");
  EXPECT_EQ(RunSdram({"SDRAM"}).output, "CS:  2\tCOLUMN:  9\tROW:  d\n\r");
  const Outcome outcome = RunSdram({"SDRAM"});
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "CS:  2\tCOLUMN:  f\tROW: 12\n\r");
}

TEST(SdramTypeCommand, AWriteShowsWhatWasTypedAndReadsNothingBack) {
  ScriptedBus bus(R"(
    lock
    w8 0130 45
    unlock
    lock
    w8 0130 20
    unlock
  )");
  EXPECT_EQ(RunSdram({"SDRAM", "=", "2", "9", "D"}).output, "CS:  2\tCOLUMN:  9\tROW:  d\n\r");
  const Outcome outcome = RunSdram({"SDRAM", "=", "01", "08", "0C"});
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "CS:  1\tCOLUMN:  8\tROW:  c\n\r");
}

TEST(SdramTypeCommand, RefusesOtherWordsUntouched) {
  ScriptedBus bus("");
  const std::vector<std::vector<std::string>> lines = {
      {"SDRAM", "="},
      {"SDRAM", "=", "1", "8"},
      {"SDRAM", "=", "1", "8", "B", "1"},
      {"SDRAM", "1", "1", "8", "B"},
      {"SDRAM", "=", "0", "8", "B"},
      {"SDRAM", "=", "3", "8", "B"},
      {"SDRAM", "=", "1", "7", "B"},
      {"SDRAM", "=", "1", "A", "B"},
      {"SDRAM", "=", "1", "8", "A"},
      {"SDRAM", "=", "1", "8", "E"},
      {"SDRAM", "=", "1", "8", "11"},
      {"SDRAM", "=", "G", "8", "B"},
      {"SDRAM", "=", "001", "8", "B"},
  };
  for (const std::vector<std::string>& line : lines) {
    const Outcome outcome = RunSdram(line);
    EXPECT_EQ(outcome.result, kUsage) << line.size();
    EXPECT_EQ(outcome.output, "") << line.size();
  }
}

}  // namespace
}  // namespace monitor
