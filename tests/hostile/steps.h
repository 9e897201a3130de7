// What many models share: changes of a register, and the handshake of the table engines.
#pragma once

#include "core/driver_status.h"
#include "hostile/path.h"

namespace hostile {

using enum monitor::DriverStatus;
using monitor::DriverStatus;

/// One load, one store.
inline void Set(std::uint32_t offset, unsigned bits) { W8(offset, R8(offset) | bits); }
inline void Clear(std::uint32_t offset, unsigned bits) { W8(offset, R8(offset) & ~bits); }
inline void SetOrClear(std::uint32_t offset, unsigned bits, bool set) {
  set ? Set(offset, bits) : Clear(offset, bits);
}

/// Two loads, the high byte from the first, the low byte from the second.
inline std::uint16_t R16Halves(std::uint32_t offset, std::uint16_t branch_in_second = 0) {
  const unsigned first = R16(offset);
  const unsigned second = R16(offset, branch_in_second);
  return static_cast<std::uint16_t>((first & 0xFF00) | (second & 0x00FF));
}

/// Bits 0 and 1 of a command byte are both set.
inline bool Ready(std::uint32_t command) { return (R8(command, 0x03) & 0x03) == 0x03; }

/// The command byte becomes (old OR set) AND keep; then start, bit 2, is cleared.
inline void Pulse(std::uint32_t command, unsigned set, unsigned keep) {
  W8(command, (R8(command) | set) & keep);
  Clear(command, 0x04);
}

/// Bit 0 or bit 1 of a command byte rises.
inline DriverStatus Done(std::uint32_t command, std::uint8_t bit) {
  return Await(command, bit, 0x03) ? kOk : kNotReady;
}

/// Ready, start, done: bit 0 for a read, bit 1 for a write.
inline DriverStatus Step(std::uint32_t command, unsigned set, unsigned keep, std::uint8_t done) {
  if (!Ready(command)) return kNotReady;
  Pulse(command, set, keep);
  return Done(command, done);
}

/// As Step, and opens the lock between start and done.
inline DriverStatus StepUnlocking(std::uint32_t command, unsigned set, unsigned keep,
                                  std::uint8_t done) {
  if (!Ready(command)) {
    Unlock();
    return kNotReady;
  }
  Pulse(command, set, keep);
  Unlock();
  return Done(command, done);
}

/// Byte registers in increasing order.
template <typename Bytes>
void ReadAll(std::uint32_t offset, Bytes& bytes) {
  for (auto& byte : bytes) byte = R8(offset++);
}
template <typename Bytes>
void WriteAll(std::uint32_t offset, const Bytes& bytes) {
  for (const auto byte : bytes) W8(offset++, byte);
}

}  // namespace hostile
