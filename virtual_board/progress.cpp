#include "virtual_board/progress.h"

#include <algorithm>
#include <string_view>

#include "chip/hex.h"
#include "shell/line_editor.h"

namespace board {
namespace {

constexpr char kCarriageReturn = 13;

/// What the line editor holds, up to the end of the line.
std::string LineText() {
  const std::string_view line(monitor::ConsoleLineBuffer, sizeof(monitor::ConsoleLineBuffer));
  std::string text;
  for (const char c : line.substr(0, line.find(kCarriageReturn))) {
    if (c >= ' ' && c <= '~') {
      text += c;
    } else {
      text.append("\\x").append(chip::Hex(static_cast<unsigned char>(c), 2));
    }
  }
  return text;
}

}  // namespace

void Progress::Note(monitor::ShellEvent event) {
  using enum monitor::ShellEvent;
  switch (event) {
    case kEdit:
      current_command_.clear();
      break;
    case kServe:
      current_command_ = kPacketService;
      break;
    case kRun:
      current_command_ = LineText();
      runs_ = true;
      break;
    case kDone:
      EndLine(0);
      break;
    case kRefused:
      EndLine(kExitRefused);
      break;
    case kFailed:
      EndLine(kExitFailed);
      break;
  }
}

void Progress::EndLine(int status) {
  runs_ = false;
  if (lines_done_++ < judged_) status_ = std::max(status_, status);
}

}  // namespace board
