// The notation of session files.
//
// A session is what the screen shows: "Debug>> " and the typed line, then the output, exactly,
// up to the next prompt. Line ends stand for "\n\r" ("\r\n" after a typed line). The escapes are
// \t, \r, \n, \xHH and a doubled backslash. Lines that begin with "#" are comments, with "@"
// directives, which are carried out before the next line is typed.
//
// Two directives let the monitor run without a typed line. The lines after them, up to the next
// directive or prompt, are what it prints meanwhile; there is no new prompt, so the "Debug>> " of
// the next line then has no meaning and only what is typed after it counts:
//   @serve N       N passes of the shell loop without input
//   @type TEXT     types TEXT without ending the line, one character per pass
#pragma once

#include <string>
#include <vector>

inline constexpr char kPrompt[] = "Debug>> ";

/// Something to do to the monitor, and what it prints until it is done.
struct Step {
  unsigned line_number = 0;
  std::vector<std::string> directives;  ///< Carried out first.
  std::string keys;
  unsigned passes = 0;  ///< Without input, after the keys.
  std::string echo;
  std::vector<std::string> output;
  bool to_prompt = false;  ///< The output ends with a prompt.
};

/// The steps of the file. Throws SessionError when it cannot be read or understood.
[[nodiscard]] std::vector<Step> ReadSession(const char* path);
