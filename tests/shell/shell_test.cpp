// Whole console streams of the shell. Every stream begins with the banner and ends with `exit`.
#include "shell/shell.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mac/packet_service.h"
#include "shell/line_editor.h"
#include "support/keys.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

const std::string kBanner = "\n\rDebug Monitor v0.9995.6.0(07-17-2002)";
const std::string kPrompt = "\n\rDebug>> ";
const std::string kExit = "exit\r\n";

const std::string kHelpRows =
    "  help                                         \n\r"
    "  help     <command>                           \n\r";
const std::string kRegRows =
    "  reg      <reg> [<bytes>]                     \n\r"
    "  reg      <reg> [<bytes>] = <values>          \n\r";

/// The only bus traffic of a shell that runs no driver.
constexpr char kUnlock[] = "unlock";

class Shell : public testing::Test {
 protected:
  void SetUp() override {
    ClearConsole();
    ReceiveMode = 0;
    ArpAutoReply = 0;
  }

  /// Everything on the screen of a session in which the lines and `exit` are typed.
  static std::string Screen(const std::vector<std::string>& lines,
                            const char* transcript = kUnlock) {
    for (const std::string& line : lines) Type(line + kEnter);
    Type("exit" + kEnter);
    const ScriptedBus bus(transcript);
    EXPECT_EQ(RunShell(), 0);
    return TakeOutput();
  }

  /// Leaves nothing of an unfinished line to the next test.
  static void ForgetLine() {
    Type(Times(10, kBackspace));
    while (LineEditorPoll()) continue;
  }

  /// The screen when each line has been answered so (its echo included).
  static std::string Answers(const std::vector<std::string>& answers) {
    std::string screen = kBanner + kPrompt;
    for (const std::string& answer : answers) screen += answer + kPrompt;
    return screen + kExit;
  }
};

TEST_F(Shell, ExitEndsItWith0AndWithoutAWord) {
  EXPECT_EQ(Screen({}), kBanner + kPrompt + "exit\r\n");
  EXPECT_EQ(UnflushedOutput(), 0U);
}

TEST_F(Shell, ExitMayBeTypedInAnyCaseAndWithMoreWords) {
  for (const char* const line : {"EXIT", "Exit now", "  exit  ", "exit=1"}) {
    Type(line + kEnter);
    const ScriptedBus bus(kUnlock);
    EXPECT_EQ(RunShell(), 0);
    EXPECT_EQ(TakeOutput(), kBanner + kPrompt + line + "\r\n");
  }
}

TEST_F(Shell, ExitLeavesWhatIsTypedAfterIt) {
  Type("exit" + kEnter + "help" + kEnter);
  const ScriptedBus bus(kUnlock);
  EXPECT_EQ(RunShell(), 0);
  EXPECT_EQ(UnreadKeys(), 5U);
}

TEST_F(Shell, EmptyLinesPrintOnlyThePrompt) {
  EXPECT_EQ(Screen({"", "   ", ""}), Answers({"\r\n", "   \r\n", "\r\n"}));
}

TEST_F(Shell, CtrlCAndCtrlDDiscardTheLine) {
  EXPECT_EQ(Screen({"help" + kCtrlC, kCtrlD + "exit"}), Answers({"help\x03\r\n",
                                                                 "\x04"
                                                                 "exit\r\n"}));
}

TEST_F(Shell, AnUnknownCommandGetsAMessageAndNoRows) {
  EXPECT_EQ(Screen({"xyz", "re", "regs 0", "="}),
            Answers({"xyz\r\nNo command found\n\r", "re\r\nNo command found\n\r",
                     "regs 0\r\nNo command found\n\r", "=\r\nNo command found\n\r"}));
}

TEST_F(Shell, AMisusedCommandShowsItsRows) {
  EXPECT_EQ(Screen({"reg", "help a b", "REG 0 1 2"}),
            Answers({"reg\r\nInvalid Command\n\r" + kRegRows,
                     "help a b\r\nInvalid Command\n\r" + kHelpRows,
                     "REG 0 1 2\r\nInvalid Command\n\r" + kRegRows}));
}

TEST_F(Shell, ALongWordRefusesTheLine) {
  const std::string line = "reg " + Times(33, "0");
  EXPECT_EQ(Screen({line}), Answers({line + "\r\n\n\rInvalid Command\n\r"}));
}

TEST_F(Shell, AWordOf32CharactersIsAWord) {
  const std::string line = Times(32, "x");
  EXPECT_EQ(Screen({line}), Answers({line + "\r\nNo command found\n\r"}));
}

TEST_F(Shell, CommandsRunWithTheirWords) {
  EXPECT_EQ(Screen({"HELP Reg", "  reg 10=a5"}, R"(
              w8 0010 a5
              r8 0010 a6
              unlock
            )"),
            Answers({"HELP Reg\r\n" + kRegRows,
                     "  reg 10=a5\r\n"
                     "50000010: A6 .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r"}));
}

TEST_F(Shell, AFailedCommandPrintsOnlyItsMessageAndTheNextOneRuns) {
  EXPECT_EQ(Screen({"l3 5", "help version", "l3 6"}, R"(
              w8 060e 05
              r8 060d 00
              w8 060e 06
              r8 060d 01
              unlock
            )"),
            Answers({"l3 5\r\nL3 Read failed\n\r",
                     "help version\r\n  version                                      \n\r",
                     "l3 6\r\nL3 Read failed\n\r"}));
}

TEST_F(Shell, AMisusedCommandDoesNotSpoilTheNextLine) {
  EXPECT_EQ(Screen({"reg", "help help", "reg 0"}, "r8 0000 12\n unlock"),
            Answers({"reg\r\nInvalid Command\n\r" + kRegRows, "help help\r\n" + kHelpRows,
                     "reg 0\r\n"
                     "50000000: 12 .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r"}));
}

// The prompt counts towards the line, the echo of what is typed after it does not.
TEST_F(Shell, TheFirstLineOfAnAnswerIsWrappedAfter71CharactersLaterOnesAfter79) {
  EXPECT_EQ(
      Screen({"help ctrl", "help maccfg"}),
      Answers({"help ctrl\r\n"
               "  ctrl     f [ageoutbm 0|1] [frdallip 0|1] [frgnn 0|1] [mirrlan 0|1] [m"
               "\n\r\t   irrwan 0|1] [disttl 0|1] [mtu 0|1] [frg 0|1]\n\r"
               "  ctrl     ppp [proxy|routing|ip]              \n\r"
               "  ctrl     mtu [<mtu>]                         \n\r",
               "help maccfg\r\n"
               "  maccfg   <port>                              \n\r"
               "  maccfg   <port> = up|down 10|100 full|half mii|rmii|serial [int|ext] [fc|afc]"
               "\n\r\t    [vlan]\n\r"}));
}

TEST_F(Shell, BackspacesAndArrowsWorkAcrossLines) {
  const std::string redraw = "\rDebug>> " + Times(71, " ") + "\rDebug>> ";
  EXPECT_EQ(Screen({"xyz", kUp, kUp + kBackspace + "w", kUp + kUp}),
            Answers({"xyz\r\nNo command found\n\r", redraw + "xyz\r\nNo command found\n\r",
                     redraw + "xyz\b \bw\r\nNo command found\n\r",
                     redraw + "xyw" + redraw + "xyz\r\nNo command found\n\r"}));
}

TEST_F(Shell, BeginsWithoutHistory) {
  (void)Screen({"xyz"});
  EXPECT_EQ(Screen({kUp}), Answers({"\rDebug>> " + Times(71, " ") + "\rDebug>> " + "\r\n"}));
}

TEST_F(Shell, ATypedCarriageReturnDropsTheRestOfTheLine) {
  EXPECT_EQ(Screen({"help help\rxyz abc"}), Answers({"help help\rxyz abc\r\n" + kHelpRows}));
}

TEST_F(Shell, ATypedNulEndsItsWordForTheLookup) {
  const std::string line("help\0x version", 14);
  EXPECT_EQ(Screen({line}),
            Answers({line + "\r\n  version                                      \n\r"}));
}

TEST_F(Shell, ALineOf300CharactersIsCutTo254) {
  const auto echo = [](const std::string& line) {
    return line.substr(0, 71) + "\n\r" + line.substr(71, 80) + "\n\r" + line.substr(151) + "\r\n";
  };
  const std::string after = "help help" + Times(245, " ") + Times(46, "x");
  const std::string before = "help help" + Times(244, " ") + Times(47, "x");
  EXPECT_EQ(Screen({after, before}),
            Answers({echo(after) + kHelpRows, echo(before) + "Invalid Command\n\r" + kHelpRows}));
}

TEST_F(Shell, SleepsWithoutADeadlineWhileNothingIsTyped) {
  Type("he");
  TypeNothing(3);
  Type("lp version" + kEnter);
  TypeNothing(2);
  EXPECT_EQ(Screen({}), Answers({"help version\r\n"
                                 "  version                                      \n\r"}));
  EXPECT_EQ(TakeSleeps(), (std::vector<long>{-1, -1, -1, -1, -1}));
}

/// A pass in which the packet service finds no frame.
constexpr char kNoFrame[] = "r16 010c 0200\n r16 0210 0000\n r16 0210 0000\n";

/// A pass in which it prints a frame of one byte.
constexpr char kFrame[] = R"(
  r16  010c 0200
  r16  0210 0010
  r16  0210 0010
  map  0200
  r8   0426 10
  mr16 02008000 0001
  mr8  02008009 02
  mr8  0200800a 04
  lock
  r8   0427 00
  w8   0427 02
  r8   0427 02
  w8   0427 00
  unlock
  mr8  02008020 11
  r16  010c 0200
  lock
  w8   0428 10
  w8   0427 01
  r8   0427 01
  w8   0427 00
  unlock
  r8   0427 04
  lock
  w16  0210 0010
  unlock
)";
const std::string kFrameShown =
    "\n\rPacket length=0x001    reason=0x04\n\r"
    "02008020: 11 .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r";

TEST_F(Shell, WithThePacketServiceOnItSleepsTwiceAsLongEachTimeUpToAMillisecond) {
  ReceiveMode = 1;
  TypeNothing(9);
  const std::string transcript = Times(9 + 5, kNoFrame) + kUnlock;
  EXPECT_EQ(Screen({}, transcript.c_str()), Answers({}));
  EXPECT_EQ(TakeSleeps(), (std::vector<long>{20, 40, 80, 160, 320, 640, 1000, 1000, 1000}));
}

TEST_F(Shell, ArpRepliesAloneKeepTheServiceOn) {
  ArpAutoReply = 1;
  TypeNothing(2);
  const std::string transcript = Times(2 + 5, kNoFrame) + kUnlock;
  EXPECT_EQ(Screen({}, transcript.c_str()), Answers({}));
  EXPECT_EQ(TakeSleeps(), (std::vector<long>{20, 40}));
}

TEST_F(Shell, ACharacterAFrameAndANewLineMakeTheSleepsShortAgain) {
  ReceiveMode = 1;
  TypeNothing(3);
  Type("x");
  TypeNothing(2);
  TypeNothing(1);  // the pass that serves a frame
  TypeNothing(2);
  Type("yz" + kEnter);
  TypeNothing(1);
  const std::string transcript =
      Times(3 + 1 + 2, kNoFrame) + kFrame + Times(2 + 3 + 1 + 5, kNoFrame) + kUnlock;
  EXPECT_EQ(Screen({}, transcript.c_str()),
            kBanner + kPrompt + "x" + kFrameShown + "yz\r\nNo command found\n\r" + kPrompt + kExit);
  EXPECT_EQ(TakeSleeps(), (std::vector<long>{20, 40, 80, 20, 40, 20, 40, 20}));
}

TEST_F(Shell, FramesGoOutAlthoughNothingMakesTheLoopSleep) {
  ReceiveMode = 1;
  TypeNothing(2);
  const std::string transcript =
      std::string(kFrame) + kFrame + "r16 010c 0200\n r16 0210 0000\n r16 0210 0000\n";
  Type("exit" + kEnter);
  const std::string whole = transcript + Times(4, kNoFrame) + kUnlock;
  (void)TakeFlushes();
  ScriptedBus bus(whole.c_str());
  // Each idle pass flushes after its frame; the lines' characters flush nothing.
  EXPECT_EQ(RunShell(), 0);
  EXPECT_EQ(TakeSleeps(), std::vector<long>{});
  EXPECT_EQ(TakeOutput(), kBanner + kPrompt + kFrameShown + kFrameShown + kExit);
  EXPECT_EQ(TakeFlushes(), 3U);
}

TEST_F(Shell, ACommandsAnswerIsOutBeforeTheNextLineIsRead) {
  Type("help version" + kEnter + "reg 10" + kEnter + "exit" + kEnter);
  ScriptedBus bus("r8 0010 a5\n unlock");
  std::string flushed;
  bus.BeforeNextEvent([&flushed] {
    flushed = TakeOutput();
    // All except the echo after the next prompt.
    EXPECT_EQ(UnflushedOutput(), (kPrompt + "reg 10\r\n").size());
  });
  EXPECT_EQ(RunShell(), 0);
  EXPECT_EQ(flushed, kBanner + kPrompt + "help version\r\n" +
                         "  version                                      \n\r" + kPrompt +
                         "reg 10\r\n");
  EXPECT_EQ(TakeSleeps(), std::vector<long>{});
}

TEST_F(Shell, NeverSleepsWhileCharactersWait) {
  (void)Screen({"xyz", "", "help version"});
  EXPECT_EQ(TakeSleeps(), std::vector<long>{});
}

TEST_F(Shell, ReturnsWhenTheConsoleHasEnded) {
  for (const char* const rest : {"", "\x1b", "\x1b["}) {
    Type("help version" + kEnter + rest);
    EndInput();
    const ScriptedBus bus("");
    EXPECT_EQ(RunShell(), 0);
    EXPECT_EQ(TakeOutput(), kBanner + kPrompt +
                                "help version\r\n"
                                "  version                                      \n\r" +
                                kPrompt);
    EXPECT_EQ(UnreadKeys(), 0U);
    ClearConsole();
  }
}

TEST_F(Shell, DoesNotRunALineInWhoseMiddleTheConsoleEnds) {
  Type("reg 10");
  EndInput();
  const ScriptedBus bus("");
  EXPECT_EQ(RunShell(), 0);
  EXPECT_EQ(TakeOutput(), kBanner + kPrompt + "reg 10");
  ForgetLine();
}

TEST_F(Shell, ServesNoFrameAfterTheConsoleHasEnded) {
  ReceiveMode = 1;
  Type("x");
  EndInput();
  const ScriptedBus bus(kNoFrame);
  EXPECT_EQ(RunShell(), 0);
  ForgetLine();
}

std::vector<ShellEvent> g_events;

TEST_F(Shell, TellsItsWatcherOfEveryLineAndOutcome) {
  using enum ShellEvent;
  g_events.clear();
  const std::string long_word(33, 'x');
  const std::vector<std::string> lines = {"", "zz", long_word, "cs 9", "help cs", "sc wan"};
  for (const std::string& line : lines) Type(line + kEnter);
  Type("exit" + kEnter);
  // The statistics engine is busy.
  const ScriptedBus bus("w8 085d 00\n r8 085c 00\n unlock");
  EXPECT_EQ(RunShell([](ShellEvent event) { g_events.push_back(event); }), 0);
  const std::vector<ShellEvent> wanted = {
      kEdit, kRun, kDone,     // nothing
      kEdit, kRun, kRefused,  // zz
      kEdit, kRun, kRefused,  // long_word
      kEdit, kRun, kRefused,  // cs 9
      kEdit, kRun, kDone,     // help cs
      kEdit, kRun, kFailed,   // sc wan
      kEdit, kRun,            // exit
  };
  EXPECT_EQ(g_events, wanted);
}

TEST_F(Shell, TellsItsWatcherWhenThePacketServiceHasItsTurn) {
  using enum ShellEvent;
  g_events.clear();
  ReceiveMode = 1;
  Type("exit" + kEnter);
  const std::string transcript = Times(5, kNoFrame) + kUnlock;
  const ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(RunShell([](ShellEvent event) { g_events.push_back(event); }), 0);
  std::vector<ShellEvent> wanted = {kEdit};
  for (int passes = 5; passes != 0; --passes) wanted.insert(wanted.end(), {kServe, kEdit});
  wanted.push_back(kRun);
  EXPECT_EQ(g_events, wanted);
}

}  // namespace
}  // namespace monitor
