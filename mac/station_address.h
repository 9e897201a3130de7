// The chip's own addresses: MAC addresses of the CPU and of the WAN port, IPv4 addresses of the
// three external ports.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"
#include "core/port_id.h"

namespace monitor {

// kRefused, with nothing touched, for a port that has no such address: MAC addresses belong to
// kPortCpu and kPortWan, IPv4 addresses to kPortWan, kPortLan and kPortDmz.

DriverStatus WriteMacAddr(std::uint8_t port, const MacAddress& mac);
DriverStatus ReadMacAddr(std::uint8_t port, MacAddress& mac);

/// Addresses are host integers, the first dotted part most significant.
DriverStatus WriteIpAddr(std::uint8_t port, std::uint32_t address);
DriverStatus ReadIpAddr(std::uint8_t port, std::uint32_t& address);

/// The `macaddr` command.
int StationAddressCommand(int argc, ArgVector argv);

}  // namespace monitor
