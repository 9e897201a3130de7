#pragma once

#include <string>

#include "chip/router_chip.h"

namespace board {

/// Makes an engine of the chip fail as "hang:ENGINE", "busy:ENGINE", "fail:ENGINE" or
/// "slow:ENGINE:LOADS" says; the last one given for an engine counts. Throws UsageError.
void SetFault(chip::RouterChip& chip, const std::string& spec);

/// The kinds of faults and the names of the engines, for the help text.
[[nodiscard]] std::string DescribeFaults();

}  // namespace board
