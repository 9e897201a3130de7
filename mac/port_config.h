// Configuration of the three MAC ports: link, speed, duplex, interface type, loopback, flow
// control and VLAN awareness. What surprises: loopback bits are only ever added, so a port that
// goes from one kind of loopback straight to the other can no longer be read until loopback is
// switched off; flow control can be switched on but never to automatic or off; and every write
// makes the port's PHY advertise pause.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"
#include "core/port_id.h"

namespace monitor {

// Values of PortConfig::flow_control.
inline constexpr std::uint8_t kFlowControlFc = 0;
inline constexpr std::uint8_t kFlowControlAfc = 1;
inline constexpr std::uint8_t kFlowControlOff = 2;

// Values of PortConfig::interface; 1 has no name.
inline constexpr std::uint8_t kInterfaceSerial = 0;
inline constexpr std::uint8_t kInterfaceMii = 2;
inline constexpr std::uint8_t kInterfaceRmii = 3;

// Values of PortConfig::loopback.
inline constexpr std::uint8_t kLoopbackInternal = 0;
inline constexpr std::uint8_t kLoopbackExternal = 1;
inline constexpr std::uint8_t kLoopbackNone = 2;

struct PortConfig {
  std::uint8_t link;    ///< 1 up, 0 down.
  std::uint8_t duplex;  ///< 1 full, 0 half.
  std::uint8_t speed;   ///< 1 100 Mbit/s, 0 10 Mbit/s.
  std::uint8_t flow_control;
  std::uint8_t interface;
  std::uint8_t loopback;
  std::uint8_t vlan_aware;  ///< 0 or 1; any other value counts as 1 in a write.
};

/// Configures a port (kPortWan, kPortLan or kPortDmz) and its PHY, whose answers are ignored.
/// Only an `interface` is cut to its field. kRefused for another port, with nothing touched, and
/// for a bad loopback, link, duplex or speed, with everything before it already written.
[[nodiscard]] DriverStatus WritePortConfig(std::uint8_t port, const PortConfig& config);

/// kRefused for another port, and for a port with both loopback bits set, of which only the
/// interface is filled then.
[[nodiscard]] DriverStatus ReadPortConfig(std::uint8_t port, PortConfig& config);

/// The `maccfg` command.
int PortConfigCommand(int argc, ArgVector argv);

}  // namespace monitor
