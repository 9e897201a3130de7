// The chip's UART: eight-bit registers of the 16550 family. Three offsets hold two or three
// registers each, distinguished by the direction of the access and by the divisor-latch-access bit
// of the line control register; the drivers name registers by code. The modem control register
// can be read but not written.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

/// Codes of the UART's registers.
enum UartRegister : std::uint8_t {
  kUartRhr = 1,   ///< Receive holding; read. Reading takes the byte.
  kUartThr = 2,   ///< Transmit holding; write.
  kUartDll = 3,   ///< Divisor latch, low; write.
  kUartIer = 4,   ///< Interrupt enable; read and write.
  kUartDlh = 5,   ///< Divisor latch, high; write.
  kUartIsr = 6,   ///< Interrupt status; read.
  kUartFcr = 7,   ///< FIFO control; write.
  kUartLcr = 8,   ///< Line control; read and write.
  kUartLsr = 9,   ///< Line status; read.
  kUartMcr = 10,  ///< Modem control; read.
};

/// kRefused for a code that is not readable.
DriverStatus UartRegRead(std::uint16_t code, std::uint8_t& value);

/// Writes to the divisor latch open it for the store when it is not open. kRefused for a code
/// that is not writable, kUartMcr among them.
DriverStatus UartRegWrite(std::uint16_t code, std::uint8_t value);

/// The `uart` command.
int UartCommand(int argc, ArgVector argv);

}  // namespace monitor
