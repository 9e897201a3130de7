#pragma once

#include "core/engine_fields.h"
#include "core/value_names.h"

namespace monitor {

inline constexpr Reg16 kMiiCommand{0x408, "MII_COMMAND", "command and status"};
inline constexpr Field kMiiReady{14, 14, "ready", "idle"};
inline constexpr Field kMiiReadValid{13, 13, "read_valid",
                                     "the read data is that of the last read"};
inline constexpr Field kMiiPhy{12, 8, "phy", "PHY address"};
inline constexpr Field kMiiStart{7, 7, "start", "pulsed to start an access"};
inline constexpr Field kMiiReadAccess{6, 6, "read", "the access reads"};
inline constexpr Field kMiiWriteAccess{5, 5, "write", "the access writes"};
inline constexpr Field kMiiRegister{4, 0, "register", "PHY register number"};
inline constexpr EngineFields kMiiEngine{.start = kMiiStart,
                                         .read_done = kMiiReadValid,
                                         .write_done = kMiiReady,
                                         .write = kMiiWriteAccess};
inline constexpr Reg16 kMiiWriteData{0x40A, "MII_WRITE_DATA", "value to write"};
inline constexpr Reg16 kMiiReadData{0x40C, "MII_READ_DATA", "value read"};

inline constexpr ValueName kPhyAddressNames[] = {
    {kPortWan, "wan", "PHY of WAN"},
    {kPortLan, "lan", "PHY of LAN"},
    {kPortDmz, "dmz", "PHY of DMZ"},
};

inline constexpr RegisterRow kMiiRegisters[] = {
    {kMiiCommand,
     {kMiiReady,
      kMiiReadValid,
      {kMiiPhy, {ValueKind::kPort, kPhyAddressNames}},
      kMiiStart,
      kMiiReadAccess,
      kMiiWriteAccess,
      kMiiRegister}},
    kMiiWriteData,
    kMiiReadData,
};

}  // namespace monitor
