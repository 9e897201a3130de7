// Settings of the NAT engine: public address, port prefix, age-out times and switches. The NAT
// filter is bit 4 of the filter control byte; a write can switch it on, but never off.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

struct NatConfig {
  std::uint32_t ip;          ///< Host integer, the first dotted part most significant.
  std::uint8_t portPrefix;   ///< Prefix of translated ports.
  std::uint16_t defaultAge;  ///< Age-out time in units of 0.1 s.
  std::uint16_t finAge;      ///< Age-out time after FIN in units of 0.1 s.
  std::uint8_t lanToWan;     ///< 0 or 1, as all that follow.
  std::uint8_t dmzToWan;
  std::uint8_t autoTcp;
  std::uint8_t autoUdp;
  std::uint8_t disableAgeOut;
  std::uint8_t filter;
};

/// Fills every field. Always kOk.
DriverStatus NatConfigRead(NatConfig& config);

/// Writes every field; a `filter` of 0 leaves the filter as it is. Always kOk.
DriverStatus NatConfigWrite(const NatConfig& config);

void NatConfigPrint(const NatConfig& config);

/// The `natcfg` command.
int NatConfigCommand(int argc, ArgVector argv);

}  // namespace monitor
