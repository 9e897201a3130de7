#pragma once

#include "core/register_map.h"

namespace monitor {

inline constexpr Reg8 kUartData{0x300, "UART_DATA",
                                "receive or transmit holding; divisor latch, low"};
inline constexpr Reg8 kUartInterruptEnable{0x301, "UART_IER",
                                           "interrupt enable; divisor latch, high"};
inline constexpr Field kUartEnableTransmit{1, 1, "transmit", "transmit holding empty"};
inline constexpr Field kUartEnableReceive{0, 0, "receive", "received data available"};

inline constexpr Reg8 kUartStatus{0x302, "UART_ISR_FCR",
                                  "loads: interrupt status; stores: FIFO control"};
inline constexpr Field kUartFifosOn{7, 6, "fifos", "3 while the FIFOs are enabled"};
inline constexpr Field kUartInterruptSource{3, 1, "source", "1 transmit empty, 2 received data"};
inline constexpr Field kUartNoInterrupt{0, 0, "none", "no interrupt pending; FIFO enable"};

inline constexpr Reg8 kUartLineControl{0x303, "UART_LCR", "line control"};
inline constexpr Field kUartDivisorAccess{7, 7, "divisor", "divisor latch in place of 300, 301"};

inline constexpr Reg8 kUartModemControl{0x304, "UART_MCR", "modem control"};

inline constexpr Reg8 kUartLineStatus{0x305, "UART_LSR", "line status"};
inline constexpr Field kUartTransmitterEmpty{6, 6, "transmitter_empty", "nothing left to send"};
inline constexpr Field kUartHoldingEmpty{5, 5, "holding_empty", "takes the next byte"};
inline constexpr Field kUartDataReady{0, 0, "data_ready", "a received byte is waiting"};

inline constexpr RegisterRow kUartRegisters[] = {
    {kUartData, {}, "takes the received byte"},
    {kUartInterruptEnable, {kUartEnableTransmit, kUartEnableReceive}},
    {kUartStatus, {kUartFifosOn, kUartInterruptSource, kUartNoInterrupt}, "takes back source 1"},
    {kUartLineControl, {kUartDivisorAccess}},
    kUartModemControl,
    {kUartLineStatus, {kUartTransmitterEmpty, kUartHoldingEmpty, kUartDataReady}},
};

}  // namespace monitor
