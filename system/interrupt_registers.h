#pragma once

#include "core/register_map.h"

namespace monitor {

inline constexpr Reg16 kInterruptStatus{0x210, "INT_STATUS", "events; 1 acknowledges"};
inline constexpr Field kFrameReceived{4, 4, "frame_received", "a received frame waits"};
inline constexpr Reg16 kInterruptGroup{0x212, "INT_GROUP", "group of each event"};
inline constexpr Reg16 kInterruptMask{0x214, "INT_MASK", "mask of the events"};

inline constexpr RegisterRow kInterruptRegisters[] = {
    {kInterruptStatus, {kFrameReceived}},
    {kInterruptGroup, ValueKind::kBits},
    {kInterruptMask, ValueKind::kBits},
};

}  // namespace monitor
