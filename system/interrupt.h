// The interrupt controller: which events have happened, their groups and their masks. The
// monitor takes no interrupts; it looks at the status and writes it to acknowledge events.
#pragma once

#include <cstdint>

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

/// The event of a received frame, as a status value.
inline constexpr std::uint16_t kFrameReceivedEvent = 0x0010;

// All operations: always kOk. Reads assemble each value from two loads of its register.
DriverStatus IntStatusRead(std::uint16_t& value);
DriverStatus IntGroupRead(std::uint16_t& value);
DriverStatus IntMaskRead(std::uint16_t& value);

/// Acknowledges the events that are 1 in `value`.
DriverStatus IntStatusWrite(std::uint16_t value);
DriverStatus IntGroupWrite(std::uint16_t value);
DriverStatus IntMaskWrite(std::uint16_t value);

/// Shows the three registers; `s|g|m = <value>` writes one and shows it. It has no row in the
/// command table.
int InterruptCommand(int argc, ArgVector argv);

}  // namespace monitor
