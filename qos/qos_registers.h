#pragma once

#include "core/register_map.h"

namespace monitor {

// The runs below go by port (WAN, LAN, DMZ, CPU), then by queue (0 to 3).
inline constexpr RegBytes<32> kQueueThresholds{0x800, "QOS_THRESHOLDS",
                                               "RED thresholds of a queue: low, high"};
inline constexpr RegBytes<16> kQueueDrop{0x824, "QOS_DROP", "RED drop levels of a queue"};
inline constexpr Field kQueueHighDrop{7, 4, "high_drop", "in units of 1/0x20"};
inline constexpr Field kQueueLowDrop{3, 0, "low_drop", "in units of 1/0x20"};
inline constexpr RegBytes<16> kQueueCredit{0x834, "QOS_CREDIT", "credit of a queue"};

inline constexpr Reg8 kRedSharePool{0x820, "QOS_SHARE_POOL", "buffers of the RED share pool"};
inline constexpr Reg8 kMcastHighBuffers{0x821, "QOS_MCAST_HIGH",
                                        "multicast buffers, high priority"};
inline constexpr Reg8 kMcastLowBuffers{0x822, "QOS_MCAST_LOW", "buffers, low priority"};
inline constexpr Reg8 kDropControl{0x823, "QOS_DROP_CONTROL", "RED switch and drop threshold"};
inline constexpr Field kDropThreshold{7, 1, "threshold", "buffer count without its lowest bit"};
inline constexpr Field kRedEnable{0, 0, "red", "RED enable"};
inline constexpr Reg8 kNoBufferThreshold{0x844, "QOS_NO_BUFFER", "no-buffer threshold"};
inline constexpr Reg8 kXonThreshold{0x845, "QOS_XON", "XON threshold"};
inline constexpr Reg8 kXoffThreshold{0x846, "QOS_XOFF", "XOFF threshold"};

inline constexpr RegisterRow kQosRegisters[] = {
    kQueueThresholds,
    kRedSharePool,
    kMcastHighBuffers,
    kMcastLowBuffers,
    {kDropControl, {kDropThreshold, kRedEnable}},
    {kQueueDrop, {kQueueHighDrop, kQueueLowDrop}},
    kQueueCredit,
    kNoBufferThreshold,
    kXonThreshold,
    kXoffThreshold,
};

}  // namespace monitor
