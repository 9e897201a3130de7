#pragma once

#include "core/register_map.h"

namespace monitor {

// Of each mask size and wait register only the field below is used.
inline constexpr Field kCsMaskSize{3, 0, "mask_size", "mask size"};
inline constexpr Field kCsWait{3, 0, "wait", "wait states"};

inline constexpr Reg16 kCs0Start{0x110, "CS0_START", "start of chip select 0"};
inline constexpr Reg8 kCs0MaskSize{0x112, "CS0_MASK_SIZE", "mask size of chip select 0"};
inline constexpr Reg16 kCs1Start{0x114, "CS1_START", "start of chip select 1"};
inline constexpr Reg8 kCs1MaskSize{0x116, "CS1_MASK_SIZE", "mask size of chip select 1"};
inline constexpr Reg16 kCs3Start{0x118, "CS3_START", "start of chip select 3"};
inline constexpr Reg8 kCs3MaskSize{0x11A, "CS3_MASK_SIZE", "mask size of chip select 3"};
inline constexpr Reg8 kCs3Wait{0x11B, "CS3_WAIT", "wait states of chip select 3"};
inline constexpr Reg16 kCs4Start{0x11C, "CS4_START", "start of chip select 4"};
inline constexpr Reg8 kCs4MaskSize{0x11E, "CS4_MASK_SIZE", "mask size of chip select 4"};
inline constexpr Reg8 kCs4Wait{0x11F, "CS4_WAIT", "wait states of chip select 4"};
inline constexpr Reg16 kCs5Start{0x120, "CS5_START", "start of chip select 5"};
inline constexpr Reg8 kCs5MaskSize{0x122, "CS5_MASK_SIZE", "mask size of chip select 5"};
inline constexpr Reg8 kCs5Wait{0x123, "CS5_WAIT", "wait states of chip select 5"};
inline constexpr Reg16 kCsAlternativeStart{0x124, "CS_ALTERNATIVE_START",
                                           "start of the alternative region"};

inline constexpr Reg8 kSdramType{0x130, "SDRAM_TYPE", "geometry of the SDRAM"};
inline constexpr Field kSdramRow{7, 5, "row", "row bits"};
inline constexpr Field kSdramColumn{4, 2, "column", "column bits"};
inline constexpr Field kSdramChipSelect{0, 0, "chip_select", "chip selects"};

inline constexpr ValueName kSdramRowNames[] = {
    {0, "bits11", "11"},
    {1, "bits12", "12"},
    {2, "bits13", "13"},
};
inline constexpr ValueName kSdramColumnNames[] = {{0, "bits8", "8"}, {1, "bits9", "9"}};
inline constexpr ValueName kSdramChipSelectNames[] = {{0, "one", "1"}, {1, "two", "2"}};

inline constexpr RegisterRow kChipSelectRegisters[] = {
    kCs0Start,
    {kCs0MaskSize, {kCsMaskSize}},
    kCs1Start,
    {kCs1MaskSize, {kCsMaskSize}},
    kCs3Start,
    {kCs3MaskSize, {kCsMaskSize}},
    {kCs3Wait, {kCsWait}},
    kCs4Start,
    {kCs4MaskSize, {kCsMaskSize}},
    {kCs4Wait, {kCsWait}},
    kCs5Start,
    {kCs5MaskSize, {kCsMaskSize}},
    {kCs5Wait, {kCsWait}},
    kCsAlternativeStart,
    {kSdramType,
     {{kSdramRow, kSdramRowNames},
      {kSdramColumn, kSdramColumnNames},
      {kSdramChipSelect, kSdramChipSelectNames}}},
};

}  // namespace monitor
