#include "shell/tokenise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "shell/history.h"
#include "shell/line_editor.h"
#include "support/keys.h"

namespace monitor {
namespace {

constexpr int kLimit = 128;
constexpr int kSlot = 32;
constexpr char kUntouched = '#';

using Strings = std::vector<std::string>;

/// Puts a line into the console line buffer as the editor leaves it.
void PutLine(const std::string& line) {
  const std::string ended = (line + "\r").substr(0, kLineBufferSize);
  std::copy(ended.begin(), ended.end(), ConsoleLineBuffer);
  LineReady = 1;
}

/// The last line of the history.
std::string Remembered() {
  std::array<char, kHistoryTextSize> line;
  return std::string(line.data(), static_cast<std::size_t>(HistoryOlder(line.data())));
}

class Tokeniser : public testing::Test {
 protected:
  void SetUp() override {
    HistoryInit();
    slots_.fill(kUntouched);
    slots_.back() = '\0';
    for (int i = 0; i < kLimit; ++i) argv_[static_cast<std::size_t>(i)] = &slots_[At(i)];
  }

  /// Not every test takes its line with Tokenise, which clears the flag.
  void TearDown() override { LineReady = 0; }

  /// Offset of a slot in the word storage.
  static constexpr std::size_t At(int slot) { return static_cast<std::size_t>(slot * kSlot); }

  int Split(const std::string& line) {
    PutLine(line);
    const int words = Tokenise(argv_.data(), kLimit, kSlot);
    EXPECT_EQ(LineReady, 0);
    return words;
  }

  /// The words of a line, as handlers read them.
  Strings WordsOf(const std::string& line) {
    const int words = Split(line);
    return {argv_.begin(), argv_.begin() + std::max(words, 0)};
  }

  [[nodiscard]] std::string Word(int slot) const { return argv_[static_cast<std::size_t>(slot)]; }
  [[nodiscard]] std::string Raw(int slot, std::size_t count) const {
    return std::string(&slots_[At(slot)], count);
  }

  /// The slots, the terminator after the last one, and characters that stay.
  std::array<char, kLimit * kSlot + 1 + 8> slots_;
  std::array<char*, kLimit> argv_;
};

TEST_F(Tokeniser, SpacesSeparateWords) {
  EXPECT_EQ(WordsOf("REG 100"), (Strings{"REG", "100"}));
  EXPECT_EQ(WordsOf("   REG    100  "), (Strings{"REG", "100"}));
  EXPECT_EQ(WordsOf("X"), Strings{"X"});
}

TEST_F(Tokeniser, LettersBecomeUpperCase) {
  EXPECT_EQ(WordsOf("reg Reg azAZ @[`{09"), (Strings{"REG", "REG", "AZAZ", "@[`{09"}));
}

TEST_F(Tokeniser, BytesAbove127StayAsTheyAre) {
  EXPECT_EQ(WordsOf("a\x80\xE4\xFF z"), (Strings{"A\x80\xE4\xFF", "Z"}));
}

TEST_F(Tokeniser, SignsAreWordsOfTheirOwn) {
  EXPECT_EQ(WordsOf("reg 100=12"), (Strings{"REG", "100", "=", "12"}));
  EXPECT_EQ(WordsOf("a=b"), (Strings{"A", "=", "B"}));
  EXPECT_EQ(WordsOf("=="), (Strings{"=", "="}));
  EXPECT_EQ(WordsOf("a:b:=c"), (Strings{"A", ":", "B", ":", "=", "C"}));
  EXPECT_EQ(WordsOf("=a"), (Strings{"=", "A"}));
  EXPECT_EQ(WordsOf("a= b"), (Strings{"A", "=", "B"}));
  EXPECT_EQ(WordsOf("a :"), (Strings{"A", ":"}));
}

TEST_F(Tokeniser, OnlyTheSpaceSeparates) {
  EXPECT_EQ(WordsOf("a\tb\n \t \x1b\x7f,;"), (Strings{"A\tB\n", "\t", "\x1b\x7f,;"}));
}

TEST_F(Tokeniser, ANulIsACharacterOfItsWord) {
  EXPECT_EQ(Split(std::string("a\0b c", 5)), 2);
  EXPECT_EQ(Raw(0, 5), std::string("A\0B\0#", 5));
  EXPECT_EQ(Word(0), "A");
  EXPECT_EQ(Word(1), "C");
  EXPECT_EQ(Split(std::string("\0", 1)), 1);
  EXPECT_EQ(Word(0), "");
}

TEST_F(Tokeniser, AnEmptyLineHasNoWords) {
  EXPECT_EQ(Split(""), 0);
  EXPECT_EQ(Split("     "), 0);
  EXPECT_EQ(Raw(0, 1), "#");
}

TEST_F(Tokeniser, AWordMayFillItsSlot) {
  EXPECT_EQ(Split(Times(32, "x")), 1);
  EXPECT_EQ(Raw(0, 34), Times(32, "X") + std::string("\0#", 2));
  EXPECT_EQ(Split(Times(31, "y")), 1);
  EXPECT_EQ(Raw(0, 33), Times(31, "Y") + std::string("\0\0", 2));
}

TEST_F(Tokeniser, TheNextWordOverwritesTheTerminatorOfAFullSlot) {
  EXPECT_EQ(Split(Times(32, "x") + " b"), 2);
  EXPECT_EQ(Word(0), Times(32, "X") + "B");
  EXPECT_EQ(Word(1), "B");
}

TEST_F(Tokeniser, AFullSlotEmptiesTheStaleWordAfterIt) {
  EXPECT_EQ(Split("one two three"), 3);
  EXPECT_EQ(Split(Times(32, "x")), 1);
  EXPECT_EQ(Raw(1, 4), std::string("\0WO\0", 4));
  EXPECT_EQ(Word(2), "THREE");
}

TEST_F(Tokeniser, TheLastSlotMayBeFilledToo) {
  EXPECT_EQ(Split(Times(127, "=") + Times(32, "x")), 128);
  EXPECT_EQ(Raw(127, 34), Times(32, "X") + std::string("\0#", 2));
}

TEST_F(Tokeniser, AWordOf33CharactersRefusesTheLine) {
  EXPECT_EQ(Split(Times(33, "x")), -1);
  EXPECT_EQ(Split("a b " + Times(33, "x") + " c"), -1);
  EXPECT_EQ(Split(Times(200, "x")), -1);
  EXPECT_EQ(Split(Times(127, "=") + Times(33, "x")), -1);
}

TEST_F(Tokeniser, ARefusedLineHasOverwrittenItsSlotsWithoutATerminator) {
  EXPECT_EQ(Split("one two three four five"), 5);
  EXPECT_EQ(Split("a b " + Times(33, "x") + " c"), -1);
  EXPECT_EQ(Word(0), "A");
  EXPECT_EQ(Word(1), "B");
  EXPECT_EQ(Word(2), Times(32, "X") + "FOUR");
  EXPECT_EQ(Word(3), "FOUR");
}

TEST_F(Tokeniser, ARefusedWordInTheLastSlotStaysInside) {
  EXPECT_EQ(Split(Times(127, "=") + Times(33, "x")), -1);
  EXPECT_EQ(Raw(127, 34), Times(32, "X") + "##");
}

TEST_F(Tokeniser, ASignDoesNotSaveAFullWord) {
  EXPECT_EQ(Split(Times(32, "x") + "=1"), -1);
  EXPECT_EQ(Split(Times(32, "x") + ":"), -1);
  EXPECT_EQ(WordsOf(Times(31, "x") + "=1"), (Strings{Times(31, "X"), "=", "1"}));
  EXPECT_EQ(Split(Times(32, "x") + " =1"), 3);
}

TEST_F(Tokeniser, WordsAfterThe128thAreDropped) {
  EXPECT_EQ(Split(Times(127, "=")), 127);
  EXPECT_EQ(Split(Times(128, "=")), 128);
  EXPECT_EQ(Split(Times(129, "=")), 128);
  EXPECT_EQ(Raw(127, 33), std::string("=\0", 2) + Times(31, "#"));
}

TEST_F(Tokeniser, AWordAfterThe128thMayHaveAnyLength) {
  EXPECT_EQ(Split(Times(128, "=") + Times(100, "x")), 128);
  EXPECT_EQ(Split(Times(128, "=") + "   "), 128);
}

TEST_F(Tokeniser, WordsOfEarlierLinesStayInTheirSlots) {
  EXPECT_EQ(Split("one two three"), 3);
  EXPECT_EQ(Split("four"), 1);
  EXPECT_EQ(Word(0), "FOUR");
  EXPECT_EQ(Word(1), "TWO");
  EXPECT_EQ(Word(2), "THREE");
}

TEST_F(Tokeniser, LinesEnterTheHistoryAsTyped) {
  EXPECT_EQ(Split("  Reg 100=12 "), 4);
  EXPECT_EQ(Remembered(), "  Reg 100=12 ");
  EXPECT_EQ(Split("   "), 0);
  EXPECT_EQ(Remembered(), "   ");
}

TEST_F(Tokeniser, ARefusedLineEntersTheHistory) {
  EXPECT_EQ(Split(Times(33, "x")), -1);
  EXPECT_EQ(Remembered(), Times(33, "x"));
}

TEST_F(Tokeniser, CtrlCAndCtrlDAnywhereDiscardTheLine) {
  EXPECT_EQ(Split("old"), 1);
  for (const char* const key : {"\x03", "\x04"}) {
    for (const std::string& line : {key + std::string("reg 0"), std::string("reg ") + key + " 0",
                                    std::string("reg 0") + key, std::string(key)}) {
      EXPECT_EQ(Split(line), 0);
      EXPECT_EQ(Word(0), "OLD");
    }
  }
  EXPECT_EQ(Remembered(), "old");
}

TEST_F(Tokeniser, OnlyTheFirst254CharactersAreLookedAtForCtrlC) {
  const std::string line = Times(127, "x ");
  EXPECT_EQ(Split(line.substr(0, 253) + kCtrlC), 0);
  EXPECT_EQ(Split(line + kCtrlC), 127);
  EXPECT_EQ(Split(line + kCtrlD + "y"), 127);
}

TEST_F(Tokeniser, ATypedCarriageReturnEndsTheLine) {
  EXPECT_EQ(WordsOf("ab c\rd e"), (Strings{"AB", "C"}));
  EXPECT_EQ(Remembered(), "ab c");
  EXPECT_EQ(WordsOf("f\r" + kCtrlC), Strings{"F"});
  EXPECT_EQ(Split("\rg"), 0);
  EXPECT_EQ(Remembered(), "f");
}

/// Words of seven characters.
std::string LongLine(std::size_t length) { return Times(40, "abcdefg ").substr(0, length); }

TEST_F(Tokeniser, ALineOf253CharactersIsWholeAndRemembered) {
  const Strings words = WordsOf(LongLine(253));
  ASSERT_EQ(words.size(), 32U);
  EXPECT_EQ(words[30], "ABCDEFG");
  EXPECT_EQ(words[31], "ABCDE");
  EXPECT_EQ(Remembered(), LongLine(253));
}

TEST_F(Tokeniser, LinesFrom254CharactersOnAreCutThereAndNotRemembered) {
  for (const std::size_t length : {254U, 255U, 256U, 257U, 300U}) {
    const Strings words = WordsOf(LongLine(length));
    ASSERT_EQ(words.size(), 32U) << length;
    EXPECT_EQ(words[31], "ABCDEF") << length;
    EXPECT_EQ(Remembered(), "") << length;
  }
}

TEST_F(Tokeniser, TakesAsManyWordsAsItsLimit) {
  PutLine("one two three");
  EXPECT_EQ(Tokenise(argv_.data(), 2, kSlot), 2);
  EXPECT_EQ(Word(1), "TWO");
  EXPECT_EQ(Raw(2, 1), "#");
}

TEST_F(Tokeniser, WithoutRoomTakesTheLineAndNoWord) {
  PutLine("one");
  EXPECT_EQ(Tokenise(argv_.data(), 0, kSlot), 0);
  EXPECT_EQ(LineReady, 0);
  EXPECT_EQ(Remembered(), "one");
  PutLine("two");
  EXPECT_EQ(Tokenise(argv_.data(), kLimit, 0), 0);
  EXPECT_EQ(LineReady, 0);
  EXPECT_EQ(Remembered(), "two");
  EXPECT_EQ(Raw(0, 1), "#");
}

TEST_F(Tokeniser, ReadLineTerminatesWhatItTakes) {
  std::array<char, 300> line;
  line.fill(kUntouched);
  PutLine("reg 0");
  EXPECT_EQ(ReadLine(line.data(), 255), 5);
  EXPECT_EQ(std::string(line.data(), 7), std::string("reg 0\0#", 7));
}

TEST_F(Tokeniser, ReadLineCutsALineTerminated) {
  std::array<char, 300> line;
  line.fill(kUntouched);
  PutLine(LongLine(300));
  EXPECT_EQ(ReadLine(line.data(), 255), 254);
  EXPECT_EQ(std::string(line.data(), 256), LongLine(254) + std::string("\0#", 2));
}

TEST_F(Tokeniser, ReadLineEmptiesADiscardedLine) {
  std::array<char, 300> line;
  line.fill(kUntouched);
  PutLine("reg 0" + kCtrlD);
  EXPECT_EQ(ReadLine(line.data(), 255), 0);
  EXPECT_EQ(line[0], '\0');
}

}  // namespace
}  // namespace monitor
