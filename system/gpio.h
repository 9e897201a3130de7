// The eight general-purpose pins: levels, interrupt status and configuration, one bit per pin.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

struct GpioConfig {
  std::uint8_t direction;
  std::uint8_t enable;
  std::uint8_t setting;
  std::uint8_t trigger;
};

// All operations: always kOk.

DriverStatus GpioDataRead(std::uint8_t& data);
DriverStatus GpioDataWrite(std::uint8_t data);
DriverStatus GpioStatusRead(std::uint8_t& status);
DriverStatus GpioStatusWrite(std::uint8_t status);
DriverStatus GpioConfigRead(GpioConfig& config);
DriverStatus GpioConfigWrite(const GpioConfig& config);

/// The `gpiocfg` command. Its words give the setting before the enable, unlike the record.
int GpioConfigCommand(int argc, ArgVector argv);

/// The `gpio` command.
int GpioCommand(int argc, ArgVector argv);

}  // namespace monitor
