// The frame engine: frames lie in 256 buffers of shared memory, named by 8-bit handles. Handle 0
// is never valid, 1 to 15 are transmit buffers that the monitor fills, the others are receive
// buffers that the chip hands out. Frames are named by their data address, the bus address of
// their first byte; each operation that takes one recovers the handle with the buffer base.
#pragma once

#include <cstdint>

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

inline constexpr std::uint8_t kLastTransmitHandle = 15;

/// A frame as the chip has received it, still in its buffer.
struct ReceivedFrame {
  std::uint8_t port;     ///< Code of the receiving port.
  std::uint32_t data;    ///< Data address.
  std::uint8_t reason;   ///< The chip's reason for handing it to the CPU, 0 to 31.
  std::uint16_t length;  ///< Bytes, 0 to 0x7FF.
};

// Unless said otherwise: always kOk. Waits on the chip have no time limit; kNotReady when the
// operator ended one.

/// Bits 31 to 16 of the buffer memory's bus address.
DriverStatus ReadBufferBase(std::uint16_t& base);
DriverStatus WriteBufferBase(std::uint16_t base);

/// Data address of a handle's frame.
[[nodiscard]] std::uint32_t FrameDataAddress(std::uint16_t base, std::uint8_t handle);

/// Sends the frame from its buffer to `port` (a code) in `service_class` 0 to 3, and returns
/// when the chip has queued it. kRefused, with nothing touched, for a bad class or port;
/// kNotReady when the memory cannot be mapped. The handle is not checked.
[[nodiscard]] DriverStatus TransmitFrame(std::uint8_t port, std::uint8_t service_class, bool high,
                                         std::uint32_t data, std::uint16_t length);

/// Takes the oldest waiting frame; it stays in its buffer until FreeFrameBuffer, and the caller
/// acknowledges the interrupt status. kNothing when none waits; kNotReady when the memory cannot
/// be mapped.
[[nodiscard]] DriverStatus ReceiveFrame(ReceivedFrame& frame);

/// Counts the outstanding uses of the buffer. The monitor's own hold on a transmit buffer does
/// not count: one is subtracted, so that 0 becomes 255. kRefused for handle 0.
[[nodiscard]] DriverStatus TxBufferStatus(std::uint32_t data, std::uint8_t& count);

/// The transmit handle that AllocTxBuffer tries next; one past the last (16) after a failure.
extern std::uint8_t TransmitCursor;

/// Finds a free transmit buffer, round robin. kNotReady when there is none; `data` is then the
/// last one tried.
[[nodiscard]] DriverStatus AllocTxBuffer(std::uint32_t& data);

/// Releases the buffer; for transmit buffers the chip has nothing to do. kRefused for handle 0.
DriverStatus FreeFrameBuffer(std::uint32_t data);

/// The `frame` command.
int FrameCommand(int argc, ArgVector argv);

}  // namespace monitor
