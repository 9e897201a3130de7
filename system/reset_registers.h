#pragma once

#include "core/register_map.h"

namespace monitor {

inline constexpr Reg8 kResetControl{0x100, "RESET_CONTROL", "reset bits, pulsed, and their status"};
inline constexpr Field kResetCpu{5, 5, "cpu", "CPU"};
inline constexpr Field kResetCpuAndChipSelect{4, 4, "cpucs", "CPU and chip selects"};
inline constexpr Field kResetDone{2, 2, "done", "the chip is up again (read)"};
inline constexpr Field kResetHardware{0, 0, "hw", "the whole chip"};
inline constexpr Reg8 kChipRevision{0x101, "CHIP_REVISION", "revision number"};
inline constexpr Reg16 kChipModel{0x102, "CHIP_MODEL",
                                  "model, four decimal digits, one per nibble"};

// Four registers of which no more is known than what a hardware reset has to be followed by.
inline constexpr Reg8 kAfterReset240{0x240, "AFTER_RESET_240", "bits 7 and 6 are set, first"};
inline constexpr Field kAfterReset240Bits{7, 6, "set", "set after a hardware reset"};
inline constexpr Reg8 kAfterReset241{0x241, "AFTER_RESET_241", "0x00, then 0xC0 is stored"};
inline constexpr Reg8 kAfterReset250{0x250, "AFTER_RESET_250", "bit 4 is set"};
inline constexpr Field kAfterReset250Bit{4, 4, "set", "set after a hardware reset"};
inline constexpr Reg8 kAfterReset251{0x251, "AFTER_RESET_251", "bit 4 is set, last"};
inline constexpr Field kAfterReset251Bit{4, 4, "set", "set after a hardware reset"};

inline constexpr RegisterRow kResetRegisters[] = {
    {kResetControl, {kResetCpu, kResetCpuAndChipSelect, kResetDone, kResetHardware}},
    kChipRevision,
    kChipModel,
    {kAfterReset240, {kAfterReset240Bits}},
    kAfterReset241,
    {kAfterReset250, {kAfterReset250Bit}},
    {kAfterReset251, {kAfterReset251Bit}},
};

}  // namespace monitor
