// The last eight entered lines, newest first, and the position of the Up and Down keys.
#pragma once

#include <cstddef>

namespace monitor {

inline constexpr int kHistoryEntries = 8;
inline constexpr int kHistoryTextSize = 256;

/// Forgets every line.
void HistoryInit();

/// Enters a line of `length` characters, at most 255, followed by a NUL. When eight are held, it
/// replaces the oldest; an empty line is not entered. The next Up shows this line.
void HistoryAdd(const char* line, int length);

/// Up key: copies the line at the cursor to `buffer` and moves on to the older one; past the
/// oldest line it stays there. Returns the text's length, 0 when there is nothing to show. A text
/// ends at its first NUL, which is not copied.
int HistoryOlder(char* buffer);

/// Down key: copies the line after the one that Up showed last. At the newest line the cursor
/// goes back to the start and the result is 0.
int HistoryNewer(char* buffer);

}  // namespace monitor
