#include "shell/tokenise.h"

#include "shell/history.h"
#include "shell/line_editor.h"

namespace monitor {
namespace {

constexpr char kCtrlC = 3;
constexpr char kCtrlD = 4;
constexpr char kCarriageReturn = 13;

constexpr bool IsSign(char c) { return c == '=' || c == ':'; }

constexpr char ToUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Copies the word at `text` to `slot` and moves `text` past it. False, with the slot full
/// and not terminated, when the word is too long.
bool TakeWord(const char*& text, const char* end, char* slot, int slot_size) {
  int length = 0;
  while (text != end && *text != ' ') {
    if (length == slot_size) return false;
    if (IsSign(*text) && length != 0) break;
    const char c = ToUpper(*text++);
    slot[length++] = c;
    if (IsSign(c)) break;
  }
  slot[length] = '\0';
  return true;
}

}  // namespace

int ReadLine(char* line, int size) {
  int length = 0;
  for (; length < size - 1; ++length) {
    const char c = ConsoleLineBuffer[length];
    if (c == kCtrlC || c == kCtrlD) {
      line[0] = '\0';
      return 0;
    }
    if (c == kCarriageReturn) {
      line[length] = '\0';
      HistoryAdd(line, length);
      return length;
    }
    line[length] = c;
  }
  line[length] = '\0';
  return length;
}

int Tokenise(ArgVector argv, int limit, int slot_size) {
  LineReady = 0;
  char line[kLineBufferSize];
  const int length = ReadLine(line, kLineBufferSize - 1);
  if (slot_size == 0) return 0;

  const char* text = line;
  const char* const end = line + length;
  int words = 0;
  while (words < limit) {
    while (text != end && *text == ' ') ++text;
    if (text == end) break;
    if (!TakeWord(text, end, argv[words], slot_size)) return -1;
    ++words;
  }
  return words;
}

}  // namespace monitor
