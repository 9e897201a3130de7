#include "console/posix_console.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <utility>

#include "console/console_port.h"
#include "core/long_wait.h"

namespace monitor {
namespace {

constexpr char kCtrlC = 3;
constexpr char kCtrlD = 4;
constexpr char kBackspace = 8;
constexpr char kLineFeed = 10;
constexpr char kCarriageReturn = 13;
constexpr char kDelete = 127;

constexpr int kExitFailure = 1;

/// Pause between reads of an input that has ended: a pipe without a writer is always "ready" and
/// must not keep the processor busy, but may come back.
constexpr long kEndedPauseMicroseconds = 100'000;

ConsoleSetup g_setup;

/// The most characters that one read takes, and that a wait which searches them for a Ctrl-C keeps;
/// the rest of the buffer is for the next characters to be searched.
constexpr std::size_t kTypedAhead = 3072;
char g_input[kTypedAhead + 1024];
std::size_t g_input_begin = 0;
std::size_t g_input_end = 0;

/// What becomes of the input after g_input_end. What is too much for a wait is discarded until the
/// monitor reads again, in whole lines, because the rest of a line could be another command.
enum class Flood : std::uint8_t { kNone, kBetweenLines, kInLine };
Flood g_flood = Flood::kNone;

bool g_input_ended = false;
int g_input_error = 0;
bool g_in_line = false;  ///< The last character read was not a line feed.

/// After a Ctrl-C that has ended a wait the operator has this long to press a key before anything
/// else happens: the packet service would begin the next such wait at once.
constexpr long kKeyFirstMicroseconds = 500'000;
bool g_key_first = false;

/// Looking at the input is a system call. While passes follow each other without a wait, as when
/// frames pour in, it is enough to look in one pass of several; printing takes time and makes a
/// look due.
constexpr unsigned kPassesBetweenLooks = 8;

/// An input that has ended rarely comes back.
constexpr unsigned kPassesBetweenLooksAtTheEnd = 256;
unsigned g_passes_to_look = 0;

char g_output[8192];
std::size_t g_output_count = 0;

/// Waits for an event on one of the descriptors; a negative time has no limit. The number of
/// events; negative when the wait was refused, or a signal came. A look, which takes no time, is
/// taken again then.
int WaitForAny(pollfd* entries, nfds_t count, long microseconds) {
  const timespec limit{.tv_sec = microseconds / 1'000'000,
                       .tv_nsec = microseconds % 1'000'000 * 1000};
  int events;
  do {
    events = ppoll(entries, count, microseconds < 0 ? nullptr : &limit, nullptr);
  } while (events < 0 && errno == EINTR && microseconds == 0);
  return events;
}

int WaitFor(int fd, short events, long microseconds) {
  pollfd entry{.fd = fd, .events = events, .revents = 0};
  return WaitForAny(&entry, 1, microseconds);
}

int InputEvents() { return WaitFor(g_setup.input, POLLIN, 0); }

void WaitForInputOrWatched(long microseconds) {
  pollfd entries[] = {{.fd = g_setup.input, .events = POLLIN, .revents = 0},
                      {.fd = g_setup.watched, .events = POLLIN, .revents = 0}};
  if (WaitForAny(entries, 2, microseconds) <= 0) {
    // The wait itself was the look that the next pass would take.
    g_passes_to_look = 1;
  } else if (entries[1].revents != 0) {
    g_setup.host->OnWatched();
  }
}

void Sleep(long microseconds) {
  const timespec time{.tv_sec = microseconds / 1'000'000,
                      .tv_nsec = microseconds % 1'000'000 * 1000};
  nanosleep(&time, nullptr);
}

/// Reads the waiting input. Returns the number of characters.
std::size_t ReadWaiting(char* text, std::size_t room) {
  const ssize_t got = read(g_setup.input, text, room);
  if (got > 0) {
    g_input_ended = false;
    return static_cast<std::size_t>(got);
  }
  if (got < 0 && (errno == EAGAIN || errno == EINTR)) return 0;
  g_input_ended = true;
  g_input_error = got < 0 ? errno : 0;
  return 0;
}

/// The reader of the output holds up the program's end and gets nothing more.
bool g_output_abandoned = false;

/// True when the console has ended. What the command that runs still has to say is then lost.
bool CutShort() {
  if (!ConsoleEnded()) return false;
  g_output_abandoned = true;
  return true;
}

/// True when the input is a terminal that has hung up, from which nothing can ever come again. The
/// kernel signals that on a controlling terminal only, so the program is ended by the same signal
/// on any other; this returns if it is ignored, or the program puts off its end.
bool HungUp() {
  if (isatty(g_setup.input) != 0 || errno != EIO) return false;
  raise(SIGHUP);
  (void)CutShort();
  return true;
}

/// Discards the input up to and including a Ctrl-C; false, with the input kept, without one.
bool DiscardToCtrlC() {
  const void* const found = memchr(g_input + g_input_begin, kCtrlC, g_input_end - g_input_begin);
  if (found == nullptr) return false;
  g_input_begin = static_cast<std::size_t>(static_cast<const char*>(found) - g_input) + 1;
  g_flood = Flood::kNone;
  return true;
}

bool EndsLine(char c) {
  return c == kLineFeed || (c == kCarriageReturn && g_setup.return_is_line_feed);
}

/// Discards the input after `kept`.
void DiscardAfter(std::size_t kept) {
  if (kept == g_input_end) return;
  g_flood = EndsLine(g_input[g_input_end - 1]) ? Flood::kBetweenLines : Flood::kInLine;
  g_input_end = kept;
}

/// Keeps as many whole lines as fit. They are followed by a line that its Ctrl-D makes void,
/// because it may continue one that the editor holds; it also shows where something is missing.
void KeepWholeLines() {
  std::size_t end = kTypedAhead;
  while (end != 0 && !EndsLine(g_input[end - 1])) --end;
  DiscardAfter(end);
  g_input[g_input_end++] = kCtrlD;
  g_input[g_input_end++] = kLineFeed;
}

/// Discards the rest of a line whose beginning was discarded.
void EndFlood() {
  while (g_flood == Flood::kInLine && g_input_begin != g_input_end) {
    if (EndsLine(g_input[g_input_begin++])) g_flood = Flood::kBetweenLines;
  }
  if (g_flood == Flood::kBetweenLines) g_flood = Flood::kNone;
}

bool AbandonOutput() {
  g_output_abandoned = g_setup.host != nullptr && g_setup.host->AbandonsOutput();
  return g_output_abandoned;
}

/// A message that does not go through the console, which may be what failed.
void Complain(const char* reason) {
  const auto tell = [](const char* text) {
    ssize_t done;
    do {
      done = write(STDERR_FILENO, text, strlen(text));
    } while (done < 0 && errno == EINTR && !AbandonOutput());
  };
  tell(g_setup.program);
  tell(": cannot write console output: ");
  tell(reason);
  tell("\n");
}

/// Ends the program when output cannot be delivered: nothing that was printed may be lost when
/// the program reports success.
[[noreturn]] void GiveUpOutput() {
  const int error = errno;
  if (error != EPIPE) Complain(strerror(error));
  g_output_count = 0;
  exit(kExitFailure);
}

void WriteAll(const char* text, std::size_t count) {
  while (count != 0 && !g_output_abandoned) {
    const ssize_t done = write(g_setup.output, text, count);
    if (done > 0) {
      text += done;
      count -= static_cast<std::size_t>(done);
    } else if (done < 0 && (errno == EAGAIN || errno == EINTR)) {
      const bool full = errno == EAGAIN;
      if (!AbandonOutput() && full) WaitFor(g_setup.output, POLLOUT, -1);
    } else {
      GiveUpOutput();
    }
  }
}

void Queue(const char* text, std::size_t count) {
  if (count > sizeof(g_output) - g_output_count) {
    ConsoleFlush();
    if (count > sizeof(g_output)) {
      WriteAll(text, count);
      return;
    }
  }
  memcpy(g_output + g_output_count, text, count);
  g_output_count += count;
}

}  // namespace

void ConsoleOpen(const ConsoleSetup& setup) { g_setup = setup; }

int ConsoleReadChar() {
  if (ConsoleEnded()) return -1;
  if (g_setup.host != nullptr) g_setup.host->BetweenSteps();
  if (!g_setup.first.empty()) {
    const char c = g_setup.first.front();
    g_setup.first.remove_prefix(1);
    return static_cast<unsigned char>(c);
  }
  if (g_input_begin == g_input_end) {
    if (std::exchange(g_key_first, false)) {
      ConsoleFlush();
      WaitFor(g_setup.input, POLLIN, kKeyFirstMicroseconds);
      g_passes_to_look = 0;
    }
    if (g_passes_to_look != 0) {
      --g_passes_to_look;
      return -1;
    }
    g_input_begin = 0;
    // A look that is refused leaves reading, which then waits, as the only way to the input.
    g_input_end = InputEvents() != 0 ? ReadWaiting(g_input, kTypedAhead) : 0;
    EndFlood();
    if (g_input_begin == g_input_end) {
      g_passes_to_look = (g_input_ended ? kPassesBetweenLooksAtTheEnd : kPassesBetweenLooks) - 1;
      return -1;
    }
  }
  const char c = g_input[g_input_begin++];
  g_in_line = c != kLineFeed;
  if (c == kDelete && g_setup.delete_is_backspace) return kBackspace;
  if (c == kCarriageReturn && g_setup.return_is_line_feed) return kLineFeed;
  return static_cast<unsigned char>(c);
}

void ConsoleSend(const char* text, std::size_t count) {
  g_passes_to_look = 0;
  if (!g_setup.selects_output) {
    Queue(text, count);
    return;
  }
  for (; count != 0; --count, ++text) {
    if (!g_setup.host->DropsOutput(*text)) Queue(text, 1);
  }
}

void ConsoleFlush() {
  const std::size_t count = g_output_count;
  g_output_count = 0;
  WriteAll(g_output, count);
}

void ConsoleWait(long microseconds) {
  g_passes_to_look = 0;
  ConsoleFlush();
  if (g_input_begin != g_input_end || !g_setup.first.empty() || ConsoleEnded()) return;
  if (g_setup.host != nullptr) g_setup.host->BeforeWait();
  if (!g_input_ended) {
    WaitForInputOrWatched(microseconds);
    return;
  }
  (void)HungUp();
  if (g_setup.host != nullptr && !ConsoleEnded()) {
    g_setup.host->OnEndOfInput(g_input_error, g_in_line);
  }
  if (ConsoleEnded()) return;
  const bool shorter = microseconds >= 0 && microseconds < kEndedPauseMicroseconds;
  Sleep(shorter ? microseconds : kEndedPauseMicroseconds);
}

bool ConsoleEnded() { return g_setup.host != nullptr && g_setup.host->Ended(); }

void ConsoleIdle(long microseconds) {
  const bool only_events = g_setup.host != nullptr && g_setup.host->OnlyEvents();
  ConsoleWait(only_events ? -1 : microseconds);
}

bool WaitInterrupted(const Awaited& awaited) {
  if (CutShort()) return true;
  ConsoleFlush();
  if (g_setup.host != nullptr) g_setup.host->DuringLongWait(awaited);
  if (isatty(g_setup.input) == 0) return HungUp();
  if (g_input_begin != 0) {
    memmove(g_input, g_input + g_input_begin, g_input_end - g_input_begin);
    g_input_end -= g_input_begin;
    g_input_begin = 0;
  }
  const std::size_t before = g_input_end;
  if (InputEvents() > 0) g_input_end += ReadWaiting(g_input + before, sizeof(g_input) - before);
  if (DiscardToCtrlC()) {
    g_key_first = true;
    return true;
  }
  // What is too much is discarded, so that a Ctrl-C after any amount of input is found, and soon.
  if (g_flood != Flood::kNone) {
    DiscardAfter(before);
  } else if (g_input_end > kTypedAhead) {
    KeepWholeLines();
  }
  return false;
}

}  // namespace monitor
