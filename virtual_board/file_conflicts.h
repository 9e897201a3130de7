#pragma once

#include "virtual_board/options.h"

namespace board {

/// Refuses a file that is written and also used in another way, as one would destroy the other;
/// `--load` and `--save` may share theirs. Devices and pipes may be shared. Throws UsageError.
void CheckFileConflicts(const Options& options);

}  // namespace board
