#include "shell/history.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace monitor {
namespace {

constexpr char kUntouched = '#';

class History : public testing::Test {
 protected:
  void SetUp() override { HistoryInit(); }

  static void Add(const std::string& line) {
    HistoryAdd(line.c_str(), static_cast<int>(line.size()));
  }

  /// The text that a key shows; what follows it in the line has to stay.
  static std::string Older() { return Show(HistoryOlder); }
  static std::string Newer() { return Show(HistoryNewer); }

 private:
  static std::string Show(int (*key)(char*)) {
    std::array<char, 300> line;
    line.fill(kUntouched);
    const auto length = static_cast<std::size_t>(key(line.data()));
    for (std::size_t i = length; i < line.size(); ++i) EXPECT_EQ(line[i], kUntouched) << i;
    return std::string(line.data(), length);
  }
};

TEST_F(History, IsEmptyAtFirst) {
  EXPECT_EQ(Older(), "");
  EXPECT_EQ(Newer(), "");
  EXPECT_EQ(Older(), "");
}

TEST_F(History, UpShowsTheLineJustEntered) {
  Add("reg 100");
  EXPECT_EQ(Older(), "reg 100");
}

TEST_F(History, UpGoesBackAndStaysAtTheOldestLine) {
  Add("a");
  Add("bb");
  Add("ccc");
  EXPECT_EQ(Older(), "ccc");
  EXPECT_EQ(Older(), "bb");
  EXPECT_EQ(Older(), "a");
  EXPECT_EQ(Older(), "a");
  EXPECT_EQ(Older(), "a");
}

TEST_F(History, UpUpDownShowsTheNewestTheOneBeforeAndTheNewestAgain) {
  Add("a");
  Add("b");
  Add("c");
  EXPECT_EQ(Older(), "c");
  EXPECT_EQ(Older(), "b");
  EXPECT_EQ(Newer(), "c");
  EXPECT_EQ(Newer(), "");
  EXPECT_EQ(Older(), "c");
}

TEST_F(History, DownAtTheNewestLineEmptiesTheLineAndStartsOver) {
  Add("a");
  Add("b");
  EXPECT_EQ(Newer(), "");
  EXPECT_EQ(Older(), "b");
  EXPECT_EQ(Newer(), "");
  EXPECT_EQ(Newer(), "");
  EXPECT_EQ(Older(), "b");
  EXPECT_EQ(Older(), "a");
}

TEST_F(History, DownFromPastTheOldestLineShowsTheOneAfterIt) {
  Add("a");
  Add("b");
  Add("c");
  for (int i = 0; i < 5; ++i) (void)Older();
  EXPECT_EQ(Newer(), "b");
  EXPECT_EQ(Newer(), "c");
  EXPECT_EQ(Newer(), "");
}

TEST_F(History, AfterDownUpShowsTheLineBeforeTheShownOne) {
  Add("a");
  Add("b");
  Add("c");
  Add("d");
  EXPECT_EQ(Older(), "d");
  EXPECT_EQ(Older(), "c");
  EXPECT_EQ(Older(), "b");
  EXPECT_EQ(Newer(), "c");
  EXPECT_EQ(Older(), "b");
  EXPECT_EQ(Older(), "a");
}

TEST_F(History, DownPastTheOldestOfTwoLinesShowsTheNewer) {
  Add("a");
  Add("b");
  EXPECT_EQ(Older(), "b");
  EXPECT_EQ(Older(), "a");
  EXPECT_EQ(Newer(), "b");
  EXPECT_EQ(Older(), "a");
}

TEST_F(History, AnOnlyLineHasNoneAfterIt) {
  Add("a");
  EXPECT_EQ(Older(), "a");
  EXPECT_EQ(Newer(), "");
  EXPECT_EQ(Older(), "a");
  EXPECT_EQ(Older(), "a");
  EXPECT_EQ(Newer(), "");
}

TEST_F(History, HoldsTheLastEightLines) {
  for (const char* const line : {"1", "2", "3", "4", "5", "6", "7", "8", "9"}) Add(line);
  for (const char* const line : {"9", "8", "7", "6", "5", "4", "3", "2", "2"}) {
    EXPECT_EQ(Older(), line);
  }
  for (const char* const line : {"3", "4", "5", "6", "7", "8", "9", ""}) EXPECT_EQ(Newer(), line);
}

TEST_F(History, GoesOnTakingTheOldestLinesPlace) {
  for (int i = 0; i < 100; ++i) Add("line " + std::to_string(i));
  for (int i = 99; i > 91; --i) EXPECT_EQ(Older(), "line " + std::to_string(i));
  EXPECT_EQ(Older(), "line 92");
}

TEST_F(History, HoldsEqualLinesTwice) {
  Add("a");
  Add("b");
  Add("b");
  EXPECT_EQ(Older(), "b");
  EXPECT_EQ(Older(), "b");
  EXPECT_EQ(Older(), "a");
}

TEST_F(History, AnEmptyLineIsNotEnteredAndMovesNothing) {
  Add("a");
  Add("b");
  EXPECT_EQ(Older(), "b");
  Add("");
  EXPECT_EQ(Older(), "a");
}

TEST_F(History, ANewLineIsTheNextThatUpShows) {
  Add("a");
  Add("b");
  Add("c");
  (void)Older();
  (void)Older();
  Add("d");
  EXPECT_EQ(Older(), "d");
  EXPECT_EQ(Older(), "c");
}

TEST_F(History, LongestLinesDoNotRunIntoEachOther) {
  for (const char c : {'1', '2', '3', '4', '5', '6', '7', '8'}) Add(std::string(255, c));
  for (const char c : {'8', '7', '6', '5', '4', '3', '2', '1'}) {
    EXPECT_EQ(Older(), std::string(255, c));
  }
}

TEST_F(History, AShorterLineReplacesALongerOneWhole) {
  for (int i = 0; i < 8; ++i) Add("a rather long line");
  for (int i = 0; i < 8; ++i) Add("short");
  for (int i = 0; i < 9; ++i) EXPECT_EQ(Older(), "short");
}

TEST_F(History, ANulEndsARecalledText) {
  Add(std::string("ab\0cd", 5));
  EXPECT_EQ(Older(), "ab");
  Add(std::string("\0cd", 3));
  EXPECT_EQ(Older(), "");
  EXPECT_EQ(Older(), "ab");
}

TEST_F(History, InitForgetsEveryLine) {
  for (int i = 0; i < 9; ++i) Add("a");
  (void)Older();
  HistoryInit();
  EXPECT_EQ(Older(), "");
  EXPECT_EQ(Newer(), "");
  Add("b");
  EXPECT_EQ(Older(), "b");
  EXPECT_EQ(Older(), "b");
}

}  // namespace
}  // namespace monitor
