// The switches of the tables in the control byte that they share.
#pragma once

#include "core/registers.h"

namespace monitor {

/// 1 when the switch is on, else 0: one load.
[[nodiscard]] std::uint8_t ReadFilter(Field filter);

/// Sets the switch and leaves the others alone, inside an IrqLock bracket: one load, one store.
void WriteFilter(Field filter, bool on);

}  // namespace monitor
