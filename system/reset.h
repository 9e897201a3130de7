// The chip's reset bits and its identity. A reset is a pulse; the chip sets a done bit when it is
// up again.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

// Each waits for the done bit with the lock held. kRefused, not kNotReady, when it is not set
// within 10,001 loads.

/// Resets the whole chip, then runs the sequence that has to follow, a million loads long.
DriverStatus ResetHardware();
DriverStatus ResetCpu();
DriverStatus ResetCpuAndChipSelect();

/// `done` becomes 1 when the done bit is set, otherwise 0. Always kOk.
DriverStatus ResetDoneRead(std::uint8_t& done);

/// The model number has four decimal digits, one per nibble. Always kOk.
DriverStatus ChipIdRead(std::uint8_t& revision, std::uint16_t& model);

/// Flushes everything printed, as a reset may take the console down. Always returns 1.
int ConsoleDrain();

/// The `reset` command. It ignores the results of the resets: operators check with a plain
/// `reset` afterwards.
int ResetCommand(int argc, ArgVector argv);

/// The `version` command.
int VersionCommand(int argc, ArgVector argv);

}  // namespace monitor
