#pragma once

#include "core/register_map.h"

namespace monitor {

// One for each timer.
inline constexpr std::array<Reg16, 2> kTimerCounter{{
    {0x200, "TIMER0_COUNTER", "where timer 0 stands (read)"},
    {0x208, "TIMER1_COUNTER", "where timer 1 stands (read)"},
}};
inline constexpr std::array<Reg16, 2> kTimerLoad{{
    {0x202, "TIMER0_LOAD", "where timer 0 starts"},
    {0x20A, "TIMER1_LOAD", "where timer 1 starts"},
}};
inline constexpr std::array<Reg16, 2> kTimerDivisor{{
    {0x204, "TIMER0_DIVISOR", "divides the clock of timer 0"},
    {0x20C, "TIMER1_DIVISOR", "divides the clock of timer 1"},
}};

inline constexpr Reg8 kTimerControl{0x20E, "TIMER_CONTROL", "stop and pause bits of both timers"};
inline constexpr std::array<Field, 2> kTimerPause{{
    {2, 2, "pause0", "timer 0 is paused"},
    {3, 3, "pause1", "timer 1 is paused"},
}};
inline constexpr std::array<Field, 2> kTimerStop{{
    {0, 0, "stop0", "timer 0 is stopped"},
    {1, 1, "stop1", "timer 1 is stopped"},
}};

inline constexpr RegisterRow kTimerRegisters[] = {
    kTimerCounter[0],
    kTimerLoad[0],
    kTimerDivisor[0],
    kTimerCounter[1],
    kTimerLoad[1],
    kTimerDivisor[1],
    {kTimerControl, {kTimerPause[1], kTimerPause[0], kTimerStop[1], kTimerStop[0]}},
};

}  // namespace monitor
