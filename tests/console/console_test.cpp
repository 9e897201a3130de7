#include "console/console.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

const std::string kWrap = "\n\r\t   ";

/// Every test begins right after a line end, at column 1.
class Console : public testing::Test {
 protected:
  void SetUp() override { ClearConsole(); }
};

std::string Xs(std::size_t count, char c = 'x') { return std::string(count, c); }

void Puts(const std::string& text) { ConsolePuts(text.c_str()); }

TEST_F(Console, AnEmptyTextWritesNothing) {
  ConsolePuts("");
  EXPECT_EQ(TakeOutput(), "");
}

TEST_F(Console, LineEndsAreNotTranslated) {
  Puts("a\nb\rc\n\rd\r\n");
  EXPECT_EQ(TakeOutput(), "a\nb\rc\n\rd\r\n");
}

// The line end itself counts as the first character of the line that it begins.
TEST_F(Console, AfterALineEndTheWrapComesBeforeThe80thCharacter) {
  Puts(Xs(79));
  EXPECT_EQ(TakeOutput(), Xs(79));
  Puts("y");
  EXPECT_EQ(TakeOutput(), kWrap + "y");
}

// Only a process that has printed nothing yet is at column 0.
TEST(ConsoleDeathTest, AtTheVeryStartTheWrapComesBeforeThe81stCharacter) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto starts_at_column_0 = [] {
    Puts(Xs(100));
    std::exit(TakeOutput() == Xs(80) + kWrap + Xs(20) ? 0 : 1);
  };
  EXPECT_EXIT(starts_at_column_0(), testing::ExitedWithCode(0), "");
}

TEST_F(Console, EitherLineEndCharacterAloneBeginsALine) {
  for (const char end : {'\n', '\r'}) {
    Puts(Xs(40) + end + Xs(80));
    EXPECT_EQ(TakeOutput(), Xs(40) + end + Xs(79) + kWrap + "x");
    ClearConsole();
  }
}

TEST_F(Console, AfterAWrap68CharactersFillTheLine) {
  Puts(Xs(79 + 68 + 68 + 1));
  EXPECT_EQ(TakeOutput(), Xs(79) + kWrap + Xs(68) + kWrap + Xs(68) + kWrap + "x");
}

TEST_F(Console, ALineEndOnAFullLineIsNotWrapped) {
  Puts(Xs(79) + "\n\r" + Xs(79) + "\r");
  EXPECT_EQ(TakeOutput(), Xs(79) + "\n\r" + Xs(79) + "\r");
}

TEST_F(Console, TheColumnRunsOnFromTextToText) {
  for (int i = 0; i < 79; ++i) ConsolePuts("a");
  EXPECT_EQ(TakeOutput(), Xs(79, 'a'));
  ConsolePuts("bc");
  EXPECT_EQ(TakeOutput(), kWrap + "bc");
}

TEST_F(Console, AnEmptyTextDoesNotWrapAFullLine) {
  Puts(Xs(79));
  ConsolePuts("");
  EXPECT_EQ(TakeOutput(), Xs(79));
}

TEST_F(Console, ATabCountsOne) {
  Puts("\t" + Xs(78) + "y");
  EXPECT_EQ(TakeOutput(), "\t" + Xs(78) + kWrap + "y");
}

TEST_F(Console, ThePromptLeaves71CharactersOfItsLine) {
  ConsolePuts("\n\rDebug>> ");
  Puts(Xs(72));
  EXPECT_EQ(TakeOutput(), "\n\rDebug>> " + Xs(71) + kWrap + "x");
}

TEST_F(Console, ConsoleWriteNeitherCountsNorWraps) {
  Puts(Xs(70));
  EXPECT_EQ(ConsoleWrite(Xs(200, 'w').c_str(), 200), 200);
  EXPECT_EQ(ConsoleWrite("\n\r", 2), 2);
  Puts(Xs(10));
  EXPECT_EQ(TakeOutput(), Xs(70) + Xs(200, 'w') + "\n\r" + Xs(9) + kWrap + "x");
}

TEST_F(Console, ConsoleWriteWritesExactlyItsCount) {
  EXPECT_EQ(ConsoleWrite("abcdef", 3), 3);
  EXPECT_EQ(ConsoleWrite("abcdef", 0), 0);
  EXPECT_EQ(ConsoleWrite("a\0b", 3), 3);
  EXPECT_EQ(TakeOutput(), std::string("abca\0b", 6));
}

TEST_F(Console, PrintIsCutAt319CharactersAndWrapped) {
  const std::string long_text = Xs(400);
  Print("%s\n\r", long_text.c_str());
  // 319 characters: 79, then 68 on each line.
  EXPECT_EQ(TakeOutput(),
            Xs(79) + kWrap + Xs(68) + kWrap + Xs(68) + kWrap + Xs(68) + kWrap + Xs(36));
  ClearConsole();
  Print("%s\n\r", Xs(317).c_str());
  EXPECT_EQ(TakeOutput(),
            Xs(79) + kWrap + Xs(68) + kWrap + Xs(68) + kWrap + Xs(68) + kWrap + Xs(34) + "\n\r");
}

TEST_F(Console, PrintMacIsTwelveLowerCaseDigits) {
  PrintMac({0x00, 0x50, 0xC2, 0xAB, 0xCD, 0x0F});
  EXPECT_EQ(TakeOutput(), "0050c2abcd0f");
}

TEST_F(Console, ADumpOfOneByte) {
  ScriptedBus bus("r8 0000 a7");
  EXPECT_EQ(HexDump(0x50000000, 1, FetchWindow), 1);
  EXPECT_EQ(TakeOutput(), "50000000: A7 .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST_F(Console, AFullLineIs60Characters) {
  ScriptedBus bus(R"(
    r8 0100 00
    r8 0101 01
    r8 0102 02
    r8 0103 03
    r8 0104 04
    r8 0105 05
    r8 0106 06
    r8 0107 07
    r8 0108 f8
    r8 0109 f9
    r8 010a fa
    r8 010b fb
    r8 010c fc
    r8 010d fd
    r8 010e fe
    r8 010f ff
  )");
  EXPECT_EQ(HexDump(0x50000100, 16, FetchWindow), 1);
  const std::string line = TakeOutput();
  EXPECT_EQ(line, "50000100: 00 01 02 03 04 05 06 07 F8 F9 FA FB FC FD FE FF \n\r");
  EXPECT_EQ(line.size(), 60U);
}

TEST_F(Console, AnUnalignedDumpBeginsAndEndsInsideItsLines) {
  ScriptedBus bus(R"(
    r8 011e 12
    r8 011f 34
    r8 0120 56
    r8 0121 78
    r8 0122 9a
  )");
  EXPECT_EQ(HexDump(0x5000011E, 5, FetchWindow), 1);
  EXPECT_EQ(TakeOutput(),
            "50000110: .. .. .. .. .. .. .. .. .. .. .. .. .. .. 12 34 \n\r"
            "50000120: 56 78 9A .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST_F(Console, ADumpInsideOneLineIsPaddedOnBothSides) {
  ScriptedBus bus("r8 1ff5 ab\n r8 1ff6 cd");
  EXPECT_EQ(HexDump(0x50001FF5, 2, FetchWindow), 1);
  EXPECT_EQ(TakeOutput(), "50001FF0: .. .. .. .. .. AB CD .. .. .. .. .. .. .. .. .. \n\r");
}

TEST_F(Console, ADumpThatEndsWithItsLineBeginsNoOther) {
  ScriptedBus bus("r8 000f 5a");
  EXPECT_EQ(HexDump(0x5000000F, 1, FetchWindow), 1);
  EXPECT_EQ(TakeOutput(), "50000000: .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. 5A \n\r");
}

TEST_F(Console, ADumpOfNothingIsALineOnlyWhenUnaligned) {
  ScriptedBus bus("");
  EXPECT_EQ(HexDump(0x50000010, 0, FetchWindow), 1);
  EXPECT_EQ(TakeOutput(), "");
  EXPECT_EQ(HexDump(0x50000011, 0, FetchWindow), 1);
  EXPECT_EQ(TakeOutput(), "50000010: .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST_F(Console, MemoryIsDumpedByBusAddress) {
  ScriptedBus bus("mr8 1234fffe 01\n mr8 1234ffff 02\n mr8 12350000 03");
  EXPECT_EQ(HexDump(0x1234FFFE, 3, FetchMemory), 1);
  EXPECT_EQ(TakeOutput(),
            "1234FFF0: .. .. .. .. .. .. .. .. .. .. .. .. .. .. 01 02 \n\r"
            "12350000: 03 .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

struct Fetched {
  std::uint32_t address;
  unsigned count;
  std::string printed_before;
};
std::vector<Fetched> g_fetched;

void Watch(std::uint32_t address, std::uint8_t* bytes, unsigned count) {
  g_fetched.push_back({address, count, TakeOutput()});
  for (unsigned i = 0; i < count; ++i) bytes[i] = 0x11;
}

TEST_F(Console, EachLineIsWrittenBeforeTheNextBytesAreLoaded) {
  g_fetched.clear();
  EXPECT_EQ(HexDump(0xFFFFFFFC, 22, Watch), 1);
  ASSERT_EQ(g_fetched.size(), 3U);
  EXPECT_EQ(g_fetched[0].address, 0xFFFFFFFCU);
  EXPECT_EQ(g_fetched[0].count, 4U);
  EXPECT_EQ(g_fetched[0].printed_before, "");
  // Addresses continue at 0 after the last one.
  EXPECT_EQ(g_fetched[1].address, 0U);
  EXPECT_EQ(g_fetched[1].count, 16U);
  EXPECT_EQ(g_fetched[1].printed_before,
            "FFFFFFF0: .. .. .. .. .. .. .. .. .. .. .. .. 11 11 11 11 \n\r");
  EXPECT_EQ(g_fetched[2].address, 16U);
  EXPECT_EQ(g_fetched[2].count, 2U);
  EXPECT_EQ(g_fetched[2].printed_before,
            "00000000: 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 \n\r");
  EXPECT_EQ(TakeOutput(), "00000010: 11 11 .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST_F(Console, ADumpDoesNotMoveTheColumn) {
  ScriptedBus bus("r8 0000 00");
  Puts(Xs(79));
  HexDump(0x50000000, 1, FetchWindow);
  (void)TakeOutput();
  ConsolePuts("x");
  EXPECT_EQ(TakeOutput(), kWrap + "x");
}

}  // namespace
}  // namespace monitor
