#include "shell/line_editor.h"

#include "console/console.h"
#include "console/console_port.h"
#include "shell/history.h"

namespace monitor {

char ConsoleLineBuffer[kLineBufferSize];
std::uint8_t LineReady;

namespace {

constexpr char kBackspace = 8;
constexpr char kLineFeed = 10;
constexpr char kCarriageReturn = 13;
constexpr char kEscape = 27;

/// The echo breaks after these characters: the prompt of 9 and 71 fill a line of 80.
constexpr int kFirstBreak = 71;
constexpr int kSecondBreak = 151;

/// Characters of the line so far.
int g_count = 0;

template <int N>
void Echo(const char (&text)[N]) {
  ConsoleWrite(text, N - 1);
}

void Store(char c) {
  if (g_count < kLineBufferSize) ConsoleLineBuffer[g_count] = c;
  ++g_count;
}

void EndLine() {
  Store(kCarriageReturn);
  Echo("\r\n");
  LineReady = 1;
  g_count = 0;
}

void EraseLast() {
  if (g_count == 0) return;
  Echo("\b \b");
  --g_count;
}

/// The next character of an escape sequence, or -1 when none comes in 200 reads. Each read that
/// finds nothing allows a slow serial line a tenth of a millisecond.
int ReadSequenceChar() {
  constexpr int kReads = 200;
  constexpr long kMicrosecondsBetweenReads = 100;
  for (int i = 0; i < kReads; ++i) {
    const int c = ConsoleReadChar();
    if (c >= 0) return c;
    ConsoleWait(kMicrosecondsBetweenReads);
  }
  return -1;
}

void ShowHistory(bool older) {
  constexpr char kPromptLine[] = "\rDebug>> ";
  constexpr int kBlanks = 71;
  Echo(kPromptLine);
  for (int i = 0; i < kBlanks; ++i) Echo(" ");
  Echo(kPromptLine);
  g_count = older ? HistoryOlder(ConsoleLineBuffer) : HistoryNewer(ConsoleLineBuffer);
  ConsoleWrite(ConsoleLineBuffer, g_count);
}

void TakeEscapeSequence() {
  if (ReadSequenceChar() != '[') return;
  const int key = ReadSequenceChar();
  if (key == 'A' || key == 'B') ShowHistory(key == 'A');
}

void TakeOrdinary(char c) {
  Store(c);
  ConsoleWrite(&c, 1);
  if (g_count == kFirstBreak || g_count == kSecondBreak) Echo("\n\r");
}

}  // namespace

bool LineEditorPoll() {
  const int c = ConsoleReadChar();
  if (c < 0) return false;
  switch (c) {
    case kLineFeed:
      EndLine();
      break;
    case kBackspace:
      EraseLast();
      break;
    case kEscape:
      TakeEscapeSequence();
      break;
    default:
      TakeOrdinary(static_cast<char>(c));
      break;
  }
  return true;
}

}  // namespace monitor
