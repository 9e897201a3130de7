#pragma once

#include "core/engine_fields.h"
#include "core/value_names.h"

namespace monitor {

inline constexpr Reg32 kArpIp{0x630, "ARP_IP", "address"};
inline constexpr RegBytes<6> kArpMac{0x634, "ARP_MAC", "MAC address, first byte first"};
inline constexpr Reg8 kArpCommand{0x63B, "ARP_COMMAND", "engine command and status"};
inline constexpr Reg8 kArpIndex{0x63C, "ARP_INDEX", "slot that a step works on"};
inline constexpr Reg8 kArpFlags{0x63D, "ARP_FLAGS", "state of the entry"};
inline constexpr Field kArpValid{0, 0, "valid", "entry in use"};
inline constexpr RegBytes<8> kArpReference{0x640, "ARP_REFERENCE",
                                           "entry was used, slot 0x3F first; 1 clears"};

inline constexpr RegisterRow kArpRegisters[] = {
    {kArpIp, ValueKind::kIpv4Address},
    {kArpMac, ValueKind::kMacAddress},
    {kArpCommand,
     {{kEngineWrite, kDirectionNames}, kEngineStart, kEngineWriteReady, kEngineReadReady}},
    {kArpIndex, ValueKind::kIndex},
    {kArpFlags, {kArpValid}},
    {kArpReference, ValueKind::kBits},
};

}  // namespace monitor
