#pragma once

#include <span>

#include "console/command.h"

namespace monitor {

/// One form of a command. All rows of a command are adjacent and carry the same handler.
struct CommandEntry {
  const char* name;        ///< The command word, in lower case.
  const char* usage;       ///< The form's arguments; may be empty.
  CommandHandler handler;  ///< None on the `exit` row only.
};

extern const std::span<const CommandEntry> CommandTable;

/// 0 when the typed word is the table name in any case, otherwise -1. Converts the typed word to
/// lower case in place, as far as the comparison went.
int CommandNameMatch(char* typed, const char* name);

/// The handler of `help`: without arguments the distinct command names, six per line; with one,
/// the usage rows of that command.
int Help(int argc, ArgVector argv);

}  // namespace monitor
