#pragma once

#include <string>

#include "core/long_wait.h"

namespace board {

/// What a wait is for, to follow the name of what waits: "waits for bit 0 (read_ready) of
/// L3_COMMAND (L3 routes) at 060d, which is clear after 100000 loads".
[[nodiscard]] std::string DescribeWait(const monitor::Awaited& awaited);

}  // namespace board
