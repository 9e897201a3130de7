// Models that other blocks' models use.
#pragma once

#include <array>

#include "hostile/steps.h"

namespace hostile {

DriverStatus IntStatusRead(std::uint16_t& value);
DriverStatus IntStatusWrite(std::uint16_t value);

DriverStatus MiiRead(std::uint8_t phy, std::uint8_t reg, std::uint16_t& value);
DriverStatus MiiWrite(std::uint8_t phy, std::uint8_t reg, std::uint16_t value);

DriverStatus ReadMacAddr(std::uint8_t port, std::array<std::uint8_t, 6>& mac);
DriverStatus ReadIpAddr(std::uint8_t port, std::uint32_t& address);

}  // namespace hostile
