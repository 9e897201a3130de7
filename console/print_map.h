// Printing of the 64-entry maps.
#pragma once

#include "core/entry_map.h"

namespace monitor {

/// The heading of a map: the first digits belong to entry 0x3F, the last to entry 0.
inline constexpr char kEntryMapHeader[] = "               3F<-..........->00";

/// Prints the header, then "\n\r<label>: " and two digits for each byte. No line end follows.
void PrintEntryMap(const char* label, const EntryMap& map);

}  // namespace monitor
