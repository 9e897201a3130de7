#include "support/command_line.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>

#include "console/console.h"
#include "shell/command_table.h"
#include "shell/history.h"
#include "shell/line_editor.h"
#include "shell/tokenise.h"
#include "support/scripted_console.h"

namespace {

using monitor::kMaxWords;
using monitor::kWordSize;

std::array<char, kMaxWords * kWordSize + 1> g_words;

monitor::ArgVector Words() {
  static const auto kPointers = [] {
    std::array<char*, kMaxWords> pointers;
    for (std::size_t i = 0; i < pointers.size(); ++i) pointers[i] = g_words.data() + i * kWordSize;
    return pointers;
  }();
  return kPointers.data();
}

/// Splits the line into the slots; the number of its words.
int TakeLine(const std::string& line) {
  if (line.size() >= monitor::kLineBufferSize) throw std::invalid_argument("line too long");
  monitor::HistoryInit();
  line.copy(monitor::ConsoleLineBuffer, line.size());
  monitor::ConsoleLineBuffer[line.size()] = '\r';
  const int argc = monitor::Tokenise(Words(), kMaxWords, kWordSize);
  if (argc <= 0) throw std::invalid_argument("no words: " + line);
  return argc;
}

}  // namespace

Outcome RunLine(const std::string& line) {
  const int argc = TakeLine(line);
  for (const monitor::CommandEntry& row : monitor::CommandTable) {
    if (monitor::CommandNameMatch(Words()[0], row.name) != 0) continue;
    // As after a prompt: the console column counts from there.
    monitor::ConsolePuts("\n\rDebug>> ");
    (void)TakeOutput();
    const int result = row.handler(argc, Words());
    return {result, TakeOutput()};
  }
  throw std::invalid_argument("no command: " + line);
}

void LeaveWords(const std::string& line) {
  const int argc = TakeLine(line);
  for (int i = argc; i < kMaxWords; ++i) {
    Words()[i][0] = '1';
    Words()[i][1] = '\0';
  }
}

void ExpectLinesRefused(const std::vector<std::string>& complete,
                        const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    for (const std::string& words : complete) {
      LeaveWords(words);
      const Outcome outcome = RunLine(line);
      EXPECT_EQ(outcome.result, monitor::kUsage) << line << ", after " << words;
      EXPECT_EQ(outcome.output, "") << line << ", after " << words;
    }
  }
}
