#include <gtest/gtest.h>

#include <array>
#include <string>

#include "console/console.h"
#include "shell/command_table.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

/// Match of a typed word with a table name, and what it makes of the typed word.
struct Match {
  int result;
  std::string typed;
};

bool operator==(const Match& a, const Match& b) {
  return a.result == b.result && a.typed == b.typed;
}

std::ostream& operator<<(std::ostream& out, const Match& match) {
  return out << match.result << " \"" << match.typed << '"';
}

Match Compare(std::string typed, const char* name) {
  const int result = CommandNameMatch(typed.data(), name);
  return {result, typed};
}

TEST(CommandNameMatch, IgnoresTheCaseOfTheTypedWordAndLowersIt) {
  EXPECT_EQ(Compare("nat", "nat"), (Match{0, "nat"}));
  EXPECT_EQ(Compare("NAT", "nat"), (Match{0, "nat"}));
  EXPECT_EQ(Compare("nAt", "nat"), (Match{0, "nat"}));
  EXPECT_EQ(Compare("L3", "l3"), (Match{0, "l3"}));
  EXPECT_EQ(Compare("AZ", "az"), (Match{0, "az"}));
}

TEST(CommandNameMatch, TheWholeWordHasToMatch) {
  EXPECT_EQ(Compare("NATCFG", "nat"), (Match{-1, "natCFG"}));
  EXPECT_EQ(Compare("NAT", "natcfg"), (Match{-1, "nat"}));
}

TEST(CommandNameMatch, LowersTheWordUpToTheFirstDifference) {
  EXPECT_EQ(Compare("RESET", "reg"), (Match{-1, "resET"}));
  EXPECT_EQ(Compare("XYZ", "reg"), (Match{-1, "xYZ"}));
  EXPECT_EQ(Compare("1AB", "reg"), (Match{-1, "1AB"}));
}

TEST(CommandNameMatch, OnlyLettersAreLowered) {
  EXPECT_EQ(Compare("@", "`"), (Match{-1, "@"}));
  EXPECT_EQ(Compare("[", "{"), (Match{-1, "["}));
  EXPECT_EQ(Compare("\xC4", "\xE4"), (Match{-1, "\xC4"}));
}

TEST(CommandNameMatch, TheTableNameIsTakenToTheLetter) {
  EXPECT_EQ(Compare("NAT", "NAT"), (Match{-1, "nAT"}));
}

TEST(CommandNameMatch, AnEmptyTextMatchesOnlyAnother) {
  EXPECT_EQ(Compare("", ""), (Match{0, ""}));
  EXPECT_EQ(Compare("A", ""), (Match{-1, "A"}));
  EXPECT_EQ(Compare("", "a"), (Match{-1, ""}));
}

class HelpCommand : public testing::Test {
 protected:
  void SetUp() override {
    ClearConsole();
    ConsolePuts("\n\rDebug>> ");
    (void)TakeOutput();
  }

  /// What `help` answers; printed text is left for TakeOutput.
  static int HelpOn(int argc, std::string word) {
    std::string help = "help";
    const std::array<char*, 2> words{help.data(), word.data()};
    return Help(argc, words.data());
  }
};

TEST_F(HelpCommand, WithoutArgumentsListsTheCommandsSixALine) {
  std::string names;
  std::string last;
  unsigned count = 0;
  for (const CommandEntry& row : CommandTable) {
    if (row.name == last) continue;
    last = row.name;
    names += last + std::string(11 - last.size(), ' ');
    if (++count % 6 == 0) names += "\n\r";
  }
  EXPECT_EQ(HelpOn(1, ""), 1);
  EXPECT_EQ(TakeOutput(), names);
}

TEST_F(HelpCommand, OnACommandListsItsForms) {
  EXPECT_EQ(HelpOn(2, "REG"), 1);
  EXPECT_EQ(TakeOutput(),
            "  reg      <reg> [<bytes>]                     \n\r"
            "  reg      <reg> [<bytes>] = <values>          \n\r");
}

TEST_F(HelpCommand, AFormWithoutArgumentsIsPaddedToo) {
  EXPECT_EQ(HelpOn(2, "version"), 1);
  EXPECT_EQ(TakeOutput(), "  version                                      \n\r");
}

TEST_F(HelpCommand, LongFormsAreWrapped) {
  EXPECT_EQ(HelpOn(2, "NAT"), 1);
  EXPECT_EQ(TakeOutput(),
            "  nat      [s] <index> [<number>]              \n\r"
            "  nat      [s] <index> = <sip> <sport> <dip> <dport> <proto> <nsip> <nsport> <a"
            "\n\r\t   ge> [server]\n\r"
            "  nat      d [s] <index> [<number>]            \n\r"
            "  nat      d h <dip> <dport>                   \n\r"
            "  nat      h <dip> <dport>                     \n\r"
            "  nat      h = <sip> <sport> <dip> <dport> <proto> <nsip> <nsport> <age> [serve"
            "\n\r\t   r]\n\r");
}

TEST_F(HelpCommand, TheFirstLineIsWrappedEarlier) {
  EXPECT_EQ(HelpOn(2, "CTRL"), 1);
  EXPECT_EQ(TakeOutput(),
            "  ctrl     f [ageoutbm 0|1] [frdallip 0|1] [frgnn 0|1] [mirrlan 0|1] [m"
            "\n\r\t   irrwan 0|1] [disttl 0|1] [mtu 0|1] [frg 0|1]\n\r"
            "  ctrl     ppp [proxy|routing|ip]              \n\r"
            "  ctrl     mtu [<mtu>]                         \n\r");
}

TEST_F(HelpCommand, OnAnUnknownCommandPrintsNothing) {
  EXPECT_EQ(HelpOn(2, "XYZ"), 1);
  EXPECT_EQ(HelpOn(2, ""), 1);
  EXPECT_EQ(HelpOn(2, "NA"), 1);
  EXPECT_EQ(HelpOn(2, "NATS"), 1);
  EXPECT_EQ(TakeOutput(), "");
}

TEST_F(HelpCommand, OtherWordCountsAreRefused) {
  EXPECT_EQ(HelpOn(3, "NAT"), 0);
  EXPECT_EQ(HelpOn(128, "NAT"), 0);
  EXPECT_EQ(HelpOn(0, "NAT"), 0);
  EXPECT_EQ(TakeOutput(), "");
}

}  // namespace
}  // namespace monitor
