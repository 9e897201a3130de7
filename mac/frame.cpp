#include "mac/frame.h"

#include "core/irq_guard.h"
#include "core/long_wait.h"
#include "core/port_id.h"
#include "mac/frame_registers.h"
#include "system/interrupt.h"

namespace monitor {

std::uint8_t TransmitCursor = 1;

namespace {

constexpr unsigned kHighestClass = 3;

/// Loads that give the engine time between the two edges of its start pulse.
constexpr int kTransmitDelayLoads = 99;

constexpr unsigned kStatusPause = 5;
constexpr unsigned kReleasePause = 100;

/// Transmit buffers in use, handle h in bit h - 1. Nothing sets a bit: the chip's use count
/// shows which buffers are free.
std::uint16_t g_transmit_busy = 0;

constexpr std::uint32_t MemoryAddress(std::uint16_t base) { return std::uint32_t{base} << 16; }

std::uint8_t HandleOf(std::uint32_t data, std::uint16_t base) {
  return static_cast<std::uint8_t>((data - MemoryAddress(base) - kBufferHeaderSize) / kBufferSize);
}

bool IsTransmitHandle(std::uint8_t handle) { return handle >= 1 && handle <= kLastTransmitHandle; }

}  // namespace

std::uint32_t FrameDataAddress(std::uint16_t base, std::uint8_t handle) {
  return MemoryAddress(base) + handle * kBufferSize + kBufferHeaderSize;
}

DriverStatus ReadBufferBase(std::uint16_t& base) {
  base = Read(kBufferBase);
  return DriverStatus::kOk;
}

DriverStatus WriteBufferBase(std::uint16_t base) {
  Write(kBufferBase, base);
  return DriverStatus::kOk;
}

DriverStatus TransmitFrame(std::uint8_t port, std::uint8_t service_class, bool high,
                           std::uint32_t data, std::uint16_t length) {
  if (service_class > kHighestClass || !IsPort(port)) return DriverStatus::kRefused;
  const std::uint16_t base = Read(kBufferBase);
  const std::uint8_t handle = HandleOf(data, base);
  if (!MemoryMap(base)) return DriverStatus::kNotReady;

  IrqGuard lock;
  MemoryStore16(data - kBufferHeaderSize + kHeaderLength, length);
  Write(kTransmitControl,
        static_cast<std::uint8_t>(kTransmitPort.Put(port) | kTransmitClass.Put(service_class) |
                                  kTransmitHigh.Put(high ? 1 : 0)));
  Write(kTransmitHandle, handle);
  SetBits(kTransmitCommand, kTransmitStart);
  for (int i = 0; i < kTransmitDelayLoads; ++i) (void)Read(kTransmitCommand);
  ClearBits(kTransmitCommand, kTransmitStart);
  lock.Release();
  return WaitForBit(kTransmitCommand, kTransmitDone);
}

DriverStatus ReceiveFrame(ReceivedFrame& frame) {
  const std::uint16_t base = Read(kBufferBase);
  std::uint16_t events;
  IntStatusRead(events);
  if ((events & kFrameReceivedEvent) == 0) return DriverStatus::kNothing;
  if (!MemoryMap(base)) return DriverStatus::kNotReady;

  const std::uint32_t start = MemoryAddress(base) + Read(kReceiveHandle) * kBufferSize;
  frame.length = kReceivedLength.Get(MemoryLoad16(start + kHeaderLength));
  frame.port = kReceivedPort.Get(MemoryLoad8(start + kHeaderPort));
  frame.reason = kReceivedReason.Get(MemoryLoad8(start + kHeaderReason));
  frame.data = start + kBufferHeaderSize;

  IrqGuard lock;
  SetBits(kBufferControl, kReceiveAcknowledge);
  ClearBits(kBufferControl, kReceiveAcknowledge);
  return DriverStatus::kOk;
}

DriverStatus TxBufferStatus(std::uint32_t data, std::uint8_t& count) {
  const std::uint8_t handle = HandleOf(data, Read(kBufferBase));
  if (handle == 0) return DriverStatus::kRefused;

  IrqGuard lock;
  Write(kStatusHandle, handle);
  Modify(kBufferStatus, kStatusStart.Mask(), static_cast<std::uint8_t>(~kStatusDone.Mask()));
  Pause(kStatusPause);
  ClearBits(kBufferStatus, kStatusStart);
  const DriverStatus status = WaitForBit(kBufferStatus, kStatusDone);
  lock.Release();
  if (Failed(status)) return status;

  count = kBufferUses.Get(Read(kBufferStatus));
  if (IsTransmitHandle(handle)) --count;
  return DriverStatus::kOk;
}

DriverStatus AllocTxBuffer(std::uint32_t& data) {
  bool wrapped = false;
  for (;;) {
    data = FrameDataAddress(Read(kBufferBase), TransmitCursor);
    std::uint8_t count;
    // Handle 0 is never tried, so a failure means that the operator gave up.
    if (Failed(TxBufferStatus(data, count))) return DriverStatus::kNotReady;
    // The end of the second round comes before the look at the count: a last buffer that is
    // free is not found.
    if (++TransmitCursor > kLastTransmitHandle) {
      if (wrapped) return DriverStatus::kNotReady;
      wrapped = true;
      TransmitCursor = 1;
    }
    if (count == 0) return DriverStatus::kOk;
  }
}

DriverStatus FreeFrameBuffer(std::uint32_t data) {
  const std::uint8_t handle = HandleOf(data, Read(kBufferBase));
  if (handle == 0) return DriverStatus::kRefused;
  if (IsTransmitHandle(handle)) {
    g_transmit_busy &= static_cast<std::uint16_t>(~(1U << (handle - 1)));
    return DriverStatus::kOk;
  }

  IrqGuard lock;
  Write(kReleaseHandle, handle);
  Write(kBufferControl, kReleaseStart.Mask());
  Pause(kReleasePause);
  ClearBits(kBufferControl, kReleaseStart);
  lock.Release();
  return WaitForBit(kBufferControl, kReleaseDone);
}

}  // namespace monitor
