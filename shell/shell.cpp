#include "shell/shell.h"

#include <cstring>

#include "classifier/classifier.h"
#include "console/console_port.h"
#include "core/bus.h"
#include "mac/packet_service.h"
#include "shell/command_table.h"
#include "shell/history.h"
#include "shell/line_editor.h"
#include "shell/tokenise.h"

namespace monitor {
namespace {

constexpr char kBanner[] = "\n\rDebug Monitor v0.9995.6.0(07-17-2002)";
constexpr char kPrompt[] = "\n\rDebug>> ";
constexpr char kInvalidCommand[] = "Invalid Command\n\r";
constexpr char kNoCommand[] = "No command found\n\r";

/// The word slots, one after the other, and the terminator of a last word that fills its slot.
char g_words[kMaxWords * kWordSize + 1];
char* g_argv[kMaxWords];

/// Sleeps between passes in which nothing happened: until a character comes, or, as frames give
/// no sign, for a time that doubles up to a millisecond while the packet service is on.
class IdleWait {
 public:
  void Restart() { microseconds_ = kShortest; }

  void Sleep() {
    if (!PacketServiceOn()) {
      ConsoleIdle(-1);
      return;
    }
    ConsoleIdle(microseconds_);
    microseconds_ = microseconds_ < kLongest / 2 ? microseconds_ * 2 : kLongest;
  }

 private:
  static constexpr long kShortest = 20;
  static constexpr long kLongest = 1000;
  long microseconds_ = kShortest;
};

void InitWords() {
  for (int i = 0; i < kMaxWords; ++i) g_argv[i] = g_words + i * kWordSize;
}

void Tell(ShellWatch watch, ShellEvent event) {
  if (watch != nullptr) watch(event);
}

bool ServePackets(ShellWatch watch) {
  if (!PacketServiceOn()) return false;
  Tell(watch, ShellEvent::kServe);
  const bool served = PacketService();
  Tell(watch, ShellEvent::kEdit);
  return served;
}

/// Reads characters and serves frames until a line is complete; false when the console has ended
/// before that.
bool CollectLine(ShellWatch watch) {
  IdleWait idle;
  for (;;) {
    const bool typed = LineEditorPoll();
    if (!typed && ConsoleEnded()) return false;
    const bool served = ServePackets(watch);
    if (LineReady != 0) return true;
    // Waiting script input is taken at once and its output leaves in large pieces; an operator's
    // echo and the frames printed meanwhile go out although nothing makes the loop sleep.
    if (!typed) ConsoleFlush();
    if (typed || served) {
      idle.Restart();
    } else {
      idle.Sleep();
    }
  }
}

const CommandEntry* FindCommand(char* word) {
  for (const CommandEntry& row : CommandTable) {
    if (CommandNameMatch(word, row.name) == 0) return &row;
  }
  return nullptr;
}

/// In addition to the results of a CommandHandler: the line was `exit`.
constexpr int kExit = 2;

int RunCommand(const CommandEntry& row, int argc) {
  const int result = row.handler(argc, g_argv);
  if (result == kUsage) {
    ConsolePuts(kInvalidCommand);
    std::strcpy(g_argv[1], g_argv[0]);  // NOLINT: a command word fits its slot
    Help(2, g_argv);
  }
  // Should the next command crash, this one's answer has been seen.
  ConsoleFlush();
  return result;
}

int RunLine() {
  const int argc = Tokenise(g_argv, kMaxWords, kWordSize);
  if (argc == 0) return kDone;
  if (argc < 0) {
    ConsolePuts("\n\r");
    ConsolePuts(kInvalidCommand);
    return kUsage;
  }
  const CommandEntry* const row = FindCommand(g_argv[0]);
  if (row == nullptr) {
    ConsolePuts(kNoCommand);
    return kUsage;
  }
  return row->handler == nullptr ? kExit : RunCommand(*row, argc);
}

constexpr ShellEvent Outcome(int result) {
  if (result == kUsage) return ShellEvent::kRefused;
  return result == kFailed ? ShellEvent::kFailed : ShellEvent::kDone;
}

}  // namespace

int RunShell(ShellWatch watch) {
  HistoryInit();
  InitWords();
  ClsClearShadow();
  ConsolePuts(kBanner);
  for (;;) {
    Tell(watch, ShellEvent::kEdit);
    ConsolePuts(kPrompt);
    if (!CollectLine(watch)) return 0;
    Tell(watch, ShellEvent::kRun);
    const int result = RunLine();
    if (result == kExit) {
      IrqUnlock(0);
      ConsoleFlush();
      return 0;
    }
    Tell(watch, Outcome(result));
  }
}

}  // namespace monitor
