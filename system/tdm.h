// The TDM transmit timer: an on-timer and an off-timer, an automatic-on switch, and an enable
// that is spread over two registers.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

// All operations are always kOk.

/// `auto_on` becomes 0 or 1.
DriverStatus TdmConfigRead(std::uint16_t& on_timer, std::uint16_t& off_timer,
                           std::uint8_t& auto_on);

DriverStatus TdmConfigWrite(std::uint16_t on_timer, std::uint16_t off_timer, std::uint8_t auto_on);

/// Switches the interface on (non-zero) or off.
DriverStatus TdmEnable(std::uint8_t on);

/// The `tdmcfg` command.
int TdmConfigCommand(int argc, ArgVector argv);

/// The `tdm` command.
int TdmCommand(int argc, ArgVector argv);

}  // namespace monitor
