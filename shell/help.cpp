#include "shell/command_table.h"

namespace monitor {
namespace {

constexpr int kNamesPerLine = 6;

void PrintNames() {
  const char* last = "";
  int names = 0;
  for (const CommandEntry& row : CommandTable) {
    if (WordIs(row.name, last)) continue;
    Print("%-11s", row.name);
    last = row.name;
    if (++names % kNamesPerLine == 0) ConsolePuts("\n\r");
  }
}

void PrintUsage(char* typed) {
  for (const CommandEntry& row : CommandTable) {
    if (CommandNameMatch(typed, row.name) == 0) Print("  %-8s %-36s\n\r", row.name, row.usage);
  }
}

}  // namespace

int CommandNameMatch(char* typed, const char* name) {
  for (; *typed != '\0' && *name != '\0'; ++typed, ++name) {
    if (*typed >= 'A' && *typed <= 'Z') *typed = static_cast<char>(*typed - 'A' + 'a');
    if (*typed != *name) return -1;
  }
  return *typed == *name ? 0 : -1;
}

int Help(int argc, ArgVector argv) {
  switch (argc) {
    case 1:
      PrintNames();
      return kDone;
    case 2:
      PrintUsage(argv[1]);
      return kDone;
    default:
      return kUsage;
  }
}

}  // namespace monitor
