#include "core/print_map.h"

#include "core/console.h"

namespace monitor {

void PrintEntryMap(const char* label, const EntryMap& map) {
  ConsolePuts(kEntryMapHeader);
  Print("\n\r%s: ", label);
  for (const std::uint8_t byte : map) Print("%02x", byte);
}

}  // namespace monitor
