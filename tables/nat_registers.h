#pragma once

#include "core/engine_fields.h"
#include "core/register_map.h"

namespace monitor {

inline constexpr Reg32 kNatSip{0x500, "NAT_SIP", "source address"};
inline constexpr Reg16 kNatSport{0x504, "NAT_SPORT", "source port"};
inline constexpr Reg16 kNatNsport{0x506, "NAT_NSPORT", "translated source port"};
inline constexpr Reg32 kNatDip{0x508, "NAT_DIP", "destination address"};
inline constexpr Reg16 kNatDport{0x50C, "NAT_DPORT", "destination port"};
inline constexpr Reg16 kNatAge{0x516, "NAT_AGE", "age-out value of the entry"};
inline constexpr Reg8 kNatIndex{0x51A, "NAT_INDEX", "slot that a step works on"};
inline constexpr Reg8 kNatControl{0x51B, "NAT_CONTROL", "table and kind of the entry"};
inline constexpr Field kNatTcp{2, 2, "tcp", "protocol"};
inline constexpr Field kNatInsideServer{1, 1, "server", "entry of an inside server"};
inline constexpr Field kNatServerTable{0, 0, "server_table", "table"};
inline constexpr Reg8 kNatCommand{0x51C, "NAT_COMMAND", "engine command and status"};
inline constexpr Field kNatStoreValid{6, 6, "valid", "what a write makes of the valid bit"};
inline constexpr Field kNatWrite{4, 4, "write", "direction"};
inline constexpr Field kNatStart{3, 3, "start", "pulsed to start a step"};
inline constexpr Field kNatResult{2, 2, "result", "the last step has succeeded"};
inline constexpr EngineFields kNatEngine{
    .start = kNatStart, .write = kNatWrite, .result = kNatResult};
inline constexpr RegBytes<32> kNatValid{0x523, "NAT_VALID",
                                        "valid bits of the main table, slot 0 first"};
inline constexpr RegBytes<2> kNatServerValid{0x543, "NAT_SERVER_VALID",
                                             "valid bits of the server table, slot 0 first"};
inline constexpr Reg32 kNatNsip{0x548, "NAT_NSIP", "translated source address"};

inline constexpr ValueName kNatProtocolNames[] = {{0, "udp", "UDP"}, {1, "tcp", "TCP"}};
inline constexpr ValueName kNatTableNames[] = {
    {0, "main", "main table"},
    {1, "server", "server table"},
};
inline constexpr ValueName kNatDirectionNames[] = {
    {0, "read", "read"},
    {1, "write", "write or delete"},
};

inline constexpr RegisterRow kNatRegisters[] = {
    {kNatSip, ValueKind::kIpv4Address},
    {kNatSport, ValueKind::kTransportPort},
    {kNatNsport, ValueKind::kTransportPort},
    {kNatDip, ValueKind::kIpv4Address},
    {kNatDport, ValueKind::kTransportPort},
    {kNatAge, ValueKind::kAge},
    {kNatIndex, ValueKind::kIndex},
    {kNatControl,
     {{kNatTcp, kNatProtocolNames}, kNatInsideServer, {kNatServerTable, kNatTableNames}}},
    {kNatCommand,
     {kNatStoreValid,
      {kNatWrite, kNatDirectionNames},
      kNatStart,
      kNatResult,
      kEngineWriteReady,
      kEngineReadReady}},
    {kNatValid, ValueKind::kBits},
    {kNatServerValid, ValueKind::kBits},
    {kNatNsip, ValueKind::kIpv4Address},
};

}  // namespace monitor
