// The chip-wide forwarding switches, PPP mode and MTU: one record that is read and written whole.
// It is gathered from registers shared with other blocks, so a write changes them bit by bit. The
// commands `ctrl` and `frame` use it.
#pragma once

#include "core/driver_status.h"

namespace monitor {

/// Switches are 0 or 1; any other value counts as 1 in a write.
struct ForwardControl {
  std::uint8_t filterWanToWan;      ///< Filter packets from WAN to WAN.
  std::uint8_t dropChecksumErrors;  ///< Drop packets with a checksum error.
  std::uint8_t frgnn;               ///< Filter fragmented IP packets in no-NAT mode.
  std::uint8_t mirrlan;             ///< Mirror LAN to DMZ.
  std::uint8_t mirrwan;             ///< Mirror WAN to DMZ.
  std::uint8_t disttl;              ///< Do not decrement the TTL.
  std::uint8_t mtu;                 ///< Filter PPPoE packets above the MTU.
  std::uint8_t frg;                 ///< Filter fragmented IP packets in NAT mode.
  std::uint8_t frdallip;            ///< Forward all IP packets in non-NAT mode.
  std::uint8_t pppMode;             ///< 0 proxy, 1 routing, 2 IP; two bits.
  std::uint8_t ageoutbm;            ///< Release aged-out buffer-manager handles.
  std::uint16_t mtuBytes;           ///< The MTU; a write keeps 12 bits.
};

/// Fills the whole record. Always kOk.
DriverStatus ReadForwardControl(ForwardControl& control);

/// Writes the whole record. Always kOk.
DriverStatus WriteForwardControl(const ForwardControl& control);

}  // namespace monitor
