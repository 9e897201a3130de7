// Splits the console line into the words of the ArgVector.
#pragma once

#include "console/command.h"

namespace monitor {

inline constexpr int kWordSize = 32;

/// Takes the complete line from the ConsoleLineBuffer into `line`: everything before the
/// carriage return, NUL-terminated; `size` is the most it may fill, at least 2. A line holding
/// Ctrl-C or Ctrl-D is discarded (0). A line is cut at size - 1 characters and then not entered
/// into the history; any other line is. Returns the number of characters.
int ReadLine(char* line, int size);

/// Takes the complete line and writes its words, in upper case, to the slots of `argv`. Spaces
/// separate words; "=" and ":" are separate words. At most `limit` words; the rest of the
/// line is dropped. Returns the number of words; 0 for an empty or discarded line; -1 when a word
/// has more than `slot_size` characters. A word that fills its slot is terminated in the next one.
int Tokenise(ArgVector argv, int limit, int slot_size);

}  // namespace monitor
