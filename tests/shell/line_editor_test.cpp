#include "shell/line_editor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "console/console.h"
#include "shell/history.h"
#include "support/keys.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

const std::string kRubOut = "\b \b";
const std::string kEnterEcho = "\r\n";

/// What the Up and Down keys write before the recalled text.
std::string BlankedPrompt() { return "\rDebug>> " + Times(71, " ") + "\rDebug>> "; }

class LineEditor : public testing::Test {
 protected:
  void SetUp() override {
    HistoryInit();
    ClearConsole();
  }

  /// Ends the line that the test has begun.
  void TearDown() override {
    ClearConsole();
    (void)Press(kEnter);
    LineReady = 0;
  }

  /// Presses keys and polls until all are taken; the echo.
  static std::string Press(const std::string& keys) {
    Type(keys);
    while (UnreadKeys() != 0) EXPECT_TRUE(LineEditorPoll());
    return TakeOutput();
  }

  /// The line as the shell will find it: what comes before the first carriage return.
  static std::string Line() {
    const std::string buffer(ConsoleLineBuffer, kLineBufferSize);
    return buffer.substr(0, buffer.find('\r'));
  }

  /// The line that the keys and Enter make.
  static std::string LineOf(const std::string& keys) {
    LineReady = 0;
    (void)Press(keys + kEnter);
    EXPECT_EQ(LineReady, 1);
    return Line();
  }
};

TEST_F(LineEditor, EchoesWhatIsTypedAndEndsTheLineWithEnter) {
  EXPECT_EQ(Press("reg 100"), "reg 100");
  EXPECT_EQ(LineReady, 0);
  EXPECT_EQ(Press(kEnter), kEnterEcho);
  EXPECT_EQ(LineReady, 1);
  EXPECT_EQ(Line(), "reg 100");
}

TEST_F(LineEditor, TheNextLineBeginsAtTheStart) {
  EXPECT_EQ(LineOf("a long line"), "a long line");
  EXPECT_EQ(LineOf("b"), "b");
  EXPECT_EQ(LineOf(""), "");
}

TEST_F(LineEditor, APollWithoutACharacterDoesNothing) {
  EXPECT_FALSE(LineEditorPoll());
  EXPECT_EQ(TakeOutput(), "");
  EXPECT_EQ(LineOf("a"), "a");
}

TEST_F(LineEditor, APollTakesOneCharacterWhenThousandsWait) {
  Type(Times(5000, "x"));
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_EQ(UnreadKeys(), 4999U);
  EXPECT_EQ(TakeOutput(), "x");
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_EQ(UnreadKeys(), 4998U);
}

TEST_F(LineEditor, APollTakesNothingAfterTheEndOfALine) {
  Type("a" + kEnter + "b");
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_EQ(LineReady, 1);
  EXPECT_EQ(UnreadKeys(), 1U);
  EXPECT_EQ(Line(), "a");
}

TEST_F(LineEditor, BackspaceRubsOutTheLastCharacter) {
  EXPECT_EQ(Press("ab" + kBackspace + "c" + kEnter), "ab" + kRubOut + "c" + kEnterEcho);
  EXPECT_EQ(Line(), "ac");
}

TEST_F(LineEditor, BackspaceOnAnEmptyLineWritesNothing) {
  EXPECT_EQ(Press(kBackspace), "");
  EXPECT_EQ(Press("ab" + Times(4, kBackspace)), "ab" + kRubOut + kRubOut);
  EXPECT_EQ(LineOf("c"), "c");
}

TEST_F(LineEditor, DeleteIsAnOrdinaryCharacter) {
  EXPECT_EQ(Press("a" + kDelete + "b"),
            "a\x7f"
            "b");
  EXPECT_EQ(LineOf(""),
            "a\x7f"
            "b");
}

TEST_F(LineEditor, ATypedCarriageReturnIsAnOrdinaryCharacter) {
  EXPECT_EQ(Press("a" + kCarriageReturn + "b"), "a\rb");
  EXPECT_EQ(LineReady, 0);
  EXPECT_EQ(Press(kEnter), kEnterEcho);
  EXPECT_EQ(std::string(ConsoleLineBuffer, 4), "a\rb\r");
}

TEST_F(LineEditor, ControlCharactersAreStoredAndEchoed) {
  EXPECT_EQ(Press("a" + kCtrlC + kCtrlD + kTab + "b"), "a\x03\x04\tb");
  EXPECT_EQ(LineOf(""), "a\x03\x04\tb");
}

TEST_F(LineEditor, NulAndBytesAbove127AreOrdinary) {
  const std::string bytes("a\0b\x80\xC3\xBC\xFE\xFF", 8);
  EXPECT_EQ(Press(bytes), bytes);
  EXPECT_EQ(LineOf(""), bytes);
}

TEST_F(LineEditor, TheEchoBreaksAfterThe71stAndThe151stCharacter) {
  EXPECT_EQ(Press(Times(70, "x")), Times(70, "x"));
  EXPECT_EQ(Press("y"), "y\n\r");
  EXPECT_EQ(Press(Times(79, "x")), Times(79, "x"));
  EXPECT_EQ(Press("y"), "y\n\r");
  EXPECT_EQ(Press(Times(80, "x") + "y"), Times(80, "x") + "y");
  EXPECT_EQ(LineOf(""), Times(70, "x") + "y" + Times(79, "x") + "y" + Times(80, "x") + "y");
}

TEST_F(LineEditor, TheEchoBreaksAgainWhenThe71stCharacterIsTypedAgain) {
  (void)Press(Times(71, "x"));
  EXPECT_EQ(Press("y"), "y");
  EXPECT_EQ(Press(Times(2, kBackspace)), kRubOut + kRubOut);
  EXPECT_EQ(Press("z"), "z\n\r");
}

TEST_F(LineEditor, EnterAfterThe70thCharacterDoesNotBreak) {
  EXPECT_EQ(Press(Times(70, "x") + kEnter), Times(70, "x") + kEnterEcho);
}

TEST_F(LineEditor, UpWithoutHistoryShowsABlankPromptLine) {
  EXPECT_EQ(Press("abc" + kUp), "abc" + BlankedPrompt());
  EXPECT_EQ(LineOf(""), "");
  EXPECT_EQ(Press(kDown), BlankedPrompt());
  EXPECT_EQ(LineOf("x"), "x");
}

TEST_F(LineEditor, UpShowsTheLastLineForEditing) {
  HistoryAdd("reg 100", 7);
  EXPECT_EQ(Press("abc" + kUp), "abc" + BlankedPrompt() + "reg 100");
  EXPECT_EQ(Press(kBackspace + "4"), kRubOut + "4");
  EXPECT_EQ(LineOf(""), "reg 104");
}

TEST_F(LineEditor, UpAndDownWalkThroughTheHistory) {
  HistoryAdd("a", 1);
  HistoryAdd("bb", 2);
  EXPECT_EQ(Press(kUp), BlankedPrompt() + "bb");
  EXPECT_EQ(Press(kUp), BlankedPrompt() + "a");
  EXPECT_EQ(Press(kDown), BlankedPrompt() + "bb");
  EXPECT_EQ(Press(kDown), BlankedPrompt());
  EXPECT_EQ(LineOf("x"), "x");
}

TEST_F(LineEditor, ARecalledTextIsCountedButNotBroken) {
  const std::string line = Times(71, "x");
  HistoryAdd(line.c_str(), 71);
  EXPECT_EQ(Press(kUp), BlankedPrompt() + line);
  EXPECT_EQ(Press("y"), "y");
  EXPECT_EQ(Press(Times(2, kBackspace) + "z"), kRubOut + kRubOut + "z\n\r");
  EXPECT_EQ(LineOf(""), Times(70, "x") + "z");
}

TEST_F(LineEditor, AnArrowKeyIsTakenWholeInOnePoll) {
  HistoryAdd("a", 1);
  Type(kUp + "b");
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_EQ(UnreadKeys(), 1U);
  EXPECT_EQ(TakeOutput(), BlankedPrompt() + "a");
}

TEST_F(LineEditor, UnknownSequencesAreSwallowed) {
  EXPECT_EQ(Press("a" + kEscape + "x" + "b"), "ab");
  EXPECT_EQ(Press(kRight + "c"), "c");
  EXPECT_EQ(Press(kEscape + "[1~"), "~");  // the sequence is over at its third character
  EXPECT_EQ(Press(kEscape + "OA"), "A");
  EXPECT_EQ(Press(kEscape + "[a"), "");
  EXPECT_EQ(LineOf(""), "abc~A");
}

TEST_F(LineEditor, WhateverFollowsAnEscapeIsPartOfTheSequence) {
  EXPECT_EQ(Press("ab" + kEscape + kBackspace), "ab");
  EXPECT_EQ(Press(kEscape + kEnter), "");
  EXPECT_EQ(LineReady, 0);
  EXPECT_EQ(Press(kEscape + kUp), "[A");  // two escapes, then plain characters
  EXPECT_EQ(Press(kEscape + "[" + kUp), "[A");
  EXPECT_EQ(Press(kEscape + "[" + kEnter), "");
  EXPECT_EQ(LineOf(""), "ab[A[A");
}

TEST_F(LineEditor, ASequenceMayArriveSlowly) {
  HistoryAdd("a", 1);
  Type(kEscape);
  TypeNothing(199);
  Type("[");
  TypeNothing(199);
  Type("A");
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_EQ(UnreadKeys(), 0U);
  EXPECT_EQ(TakeOutput(), BlankedPrompt() + "a");
  EXPECT_EQ(TakeSleeps(), std::vector<long>(398, 100));
}

TEST_F(LineEditor, ASequenceThatArrivesAtOnceIsNotWaitedFor) {
  (void)Press(kUp + kDown);
  EXPECT_EQ(TakeSleeps(), std::vector<long>{});
}

TEST_F(LineEditor, ASequenceIsGivenUpAfter200ReadsThatFindNothing) {
  Type("a" + kEscape);
  TypeNothing(200);
  Type("[Ab");
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_EQ(UnreadKeys(), 3U);
  EXPECT_EQ(Press(""), "a[Ab");
  EXPECT_EQ(LineOf(""), "a[Ab");
}

TEST_F(LineEditor, ASequenceIsGivenUpAfterItsBracketToo) {
  Type("a" + kEscape + "[");
  TypeNothing(200);
  Type("Ab");
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_EQ(UnreadKeys(), 2U);
  EXPECT_EQ(Press(""), "aAb");
  EXPECT_EQ(LineOf(""), "aAb");
}

TEST_F(LineEditor, AnEscapeAloneWaitsOnlyTwentyMilliseconds) {
  Type(kEscape);
  EXPECT_TRUE(LineEditorPoll());
  EXPECT_EQ(TakeSleeps(), std::vector<long>(200, 100));
  EXPECT_EQ(TakeOutput(), "");
}

/// A line whose characters tell their places.
std::string LongLine(std::size_t length) {
  std::string line;
  for (std::size_t i = 0; i < length; ++i) line += static_cast<char>('!' + i % 90);
  return line;
}

std::string LongEcho(const std::string& line) {
  return line.substr(0, 71) + "\n\r" + line.substr(71, 80) + "\n\r" + line.substr(151);
}

TEST_F(LineEditor, LinesThatFitTheBufferAreStoredWithTheirEnd) {
  for (const std::size_t length : {253U, 254U, 255U}) {
    const std::string line = LongLine(length);
    EXPECT_EQ(Press(line + kEnter), LongEcho(line) + kEnterEcho);
    EXPECT_EQ(std::string(ConsoleLineBuffer, length + 1), line + "\r");
  }
}

TEST_F(LineEditor, LongerLinesAreEchoedAndNotStoredPastTheBuffer) {
  for (const std::size_t length : {256U, 257U, 300U, 5000U}) {
    LineReady = 0;
    const std::string line = LongLine(length);
    EXPECT_EQ(Press(line + kEnter), LongEcho(line) + kEnterEcho);
    EXPECT_EQ(std::string(ConsoleLineBuffer, 256), line.substr(0, 256));
    EXPECT_EQ(LineReady, 1);
  }
}

TEST_F(LineEditor, CharactersPastTheBufferAreCounted) {
  const std::string line = LongLine(300);
  (void)Press(line);
  EXPECT_EQ(Press(Times(60, kBackspace)), Times(60, kRubOut));
  EXPECT_EQ(LineOf("<end>"), line.substr(0, 240) + "<end>");
}

TEST_F(LineEditor, TheEchoLeavesTheConsoleColumnAlone) {
  ConsolePuts("\n\rDebug>> ");
  (void)Press(Times(100, "x") + kBackspace + kUp + kEnter);
  ConsolePuts(Times(72, "y").c_str());
  EXPECT_EQ(TakeOutput(), Times(71, "y") + "\n\r\t   y");
}

}  // namespace
}  // namespace monitor
