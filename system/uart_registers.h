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
inline constexpr Field kUartFifosOn{7, 6, "fifos", "FIFOs"};
inline constexpr Field kUartInterruptSource{3, 1, "source", "source of the interrupt"};
inline constexpr Field kUartNoInterrupt{0, 0, "none", "no interrupt pending; FIFO enable"};

inline constexpr Reg8 kUartLineControl{0x303, "UART_LCR", "line control"};
inline constexpr Field kUartDivisorAccess{7, 7, "divisor", "divisor latch in place of 300, 301"};
inline constexpr Field kUartBreak{6, 6, "break", "send a break"};
inline constexpr Field kUartParity{5, 3, "parity", "parity"};
inline constexpr Field kUartStopBits{2, 2, "stop_bits", "stop bits"};
inline constexpr Field kUartWordLength{1, 0, "word_length", "bits of a character"};

inline constexpr Reg8 kUartModemControl{0x304, "UART_MCR", "modem control"};

inline constexpr Reg8 kUartLineStatus{0x305, "UART_LSR", "line status"};
inline constexpr Field kUartTransmitterEmpty{6, 6, "transmitter_empty", "nothing left to send"};
inline constexpr Field kUartHoldingEmpty{5, 5, "holding_empty", "takes the next byte"};
inline constexpr Field kUartDataReady{0, 0, "data_ready", "a received byte is waiting"};

inline constexpr ValueName kUartFifoNames[] = {
    {0, "off", "disabled"},
    {3, "on", "enabled"},
};
inline constexpr ValueName kUartSourceNames[] = {
    {1, "transmit_empty", "transmit holding empty"},
    {2, "received_data", "received data available"},
};
inline constexpr ValueName kUartParityNames[] = {
    {0, "none", "none"},     {1, "odd", "odd"},        {3, "even", "even"},
    {5, "mark", "always 1"}, {7, "space", "always 0"},
};
inline constexpr ValueName kUartStopBitNames[] = {
    {0, "one", "1"},
    {1, "two", "2, of 5-bit characters 1.5"},
};
inline constexpr ValueName kUartWordLengthNames[] = {
    {0, "bits5", "5"},
    {1, "bits6", "6"},
    {2, "bits7", "7"},
    {3, "bits8", "8"},
};

inline constexpr RegisterRow kUartRegisters[] = {
    {kUartData, {}, "takes the received byte"},
    {kUartInterruptEnable, {kUartEnableTransmit, kUartEnableReceive}},
    {kUartStatus,
     {{kUartFifosOn, kUartFifoNames}, {kUartInterruptSource, kUartSourceNames}, kUartNoInterrupt},
     "takes back source 1"},
    {kUartLineControl,
     {kUartDivisorAccess,
      kUartBreak,
      {kUartParity, kUartParityNames},
      {kUartStopBits, kUartStopBitNames},
      {kUartWordLength, kUartWordLengthNames}}},
    kUartModemControl,
    {kUartLineStatus, {kUartTransmitterEmpty, kUartHoldingEmpty, kUartDataReady}},
};

}  // namespace monitor
