// Raw bytes: the register window by offset, and two handlers of the same kind that work on plain
// addresses of this process and have no row in the command table.
#pragma once

#include "console/command.h"

namespace monitor {

/// `reg <reg> [<bytes>] [= <values>]`: stores bytes, in increasing order, and dumps what reads
/// back. A range that leaves the window is refused with nothing touched; a value that does not
/// parse stops the stores; the values before it have been stored.
int RegCommand(int argc, ArgVector argv);

/// `<address> [<bytes>]`: dumps memory of this process.
int MemoryDumpCommand(int argc, ArgVector argv);

/// The write forms of `reg` on memory of this process, and `C <from> <to> <bytes>`, which copies
/// bytes one at a time in increasing order and dumps the destination.
int MemoryWriteCommand(int argc, ArgVector argv);

}  // namespace monitor
