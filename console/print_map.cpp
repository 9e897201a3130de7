#include "console/print_map.h"

#include "console/console.h"

namespace monitor {

void PrintEntryMap(const char* label, const EntryMap& map) {
  ConsolePuts(kEntryMapHeader);
  Print("\n\r%s: ", label);
  for (const std::uint8_t byte : map) Print("%02x", byte);
}

}  // namespace monitor
