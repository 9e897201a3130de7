// Runs a command's handler on a typed line, as the shell does, without the shell loop.
#pragma once

#include <string>
#include <vector>

/// What a handler answered and printed.
struct Outcome {
  int result;
  std::string output;
};

/// Tokenises the line and calls the handler of its first word, with the console column where the
/// prompt leaves it. The word slots live as long as the program, so words of earlier lines are
/// still there.
[[nodiscard]] Outcome RunLine(const std::string& line);

/// Fills the word slots as after that line, with "1" in all slots after its words.
void LeaveWords(const std::string& line);

/// Expects that the handlers refuse the lines (kUsage) and print nothing. Each line is run after
/// the words of each complete line: a handler that miscounts its words finds there what it
/// wants.
void ExpectLinesRefused(const std::vector<std::string>& complete,
                        const std::vector<std::string>& lines);
