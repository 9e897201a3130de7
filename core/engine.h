// The handshake of the table engines: an index register, data registers, and a command byte
// with ready bits, a start bit that is pulsed, and a done bit that is awaited.
#pragma once

#include "core/long_wait.h"

namespace monitor {

// The bits of a command byte that the handshake itself uses; every engine has these two.
inline constexpr Field kEngineReadReady{0, 0, "read_ready", "idle, and the last read is done"};
inline constexpr Field kEngineWriteReady{1, 1, "write_ready", "idle, and the last write is done"};

// The other bits of most engines' command bytes.
inline constexpr Field kEngineStart{2, 2, "start", "pulsed to start a step"};
inline constexpr Field kEngineWrite{3, 3, "write", "direction: 1 write, 0 read"};

/// How the start pulse ends: by clearing the start bit (one load, one store), or by a store of
/// a fixed value.
struct PulseEnd {
  bool store = false;
  std::uint8_t value = 0;
};

/// One step of an engine, as data: what its command byte becomes and what the step waits for.
struct EngineStep {
  Reg8 command;
  std::uint8_t set;   ///< ORed into the command byte to start,
  std::uint8_t keep;  ///< which is then ANDed with this.
  Field done;         ///< Set by the engine when the step is complete.
  Field start = kEngineStart;
  PulseEnd end = {};
};

/// True when both ready bits are set: one load.
[[nodiscard]] bool EngineReady(Reg8 command);

/// The start pulse: the command byte becomes (old OR set) AND keep; after a short delay the pulse
/// ends. No check, no wait.
void PulseEngine(const EngineStep& step);

/// Waits for the step's done bit, without a time limit. kNotReady when the operator gave up.
[[nodiscard]] DriverStatus AwaitEngine(const EngineStep& step);

/// Ready check, pulse, wait. kNotReady, with nothing started, when the engine is busy.
[[nodiscard]] DriverStatus RunEngine(const EngineStep& step);

/// RunEngine inside an IrqLock bracket that the caller opened: the lock is released right after
/// the pulse, before the wait, or at once when the engine is busy.
[[nodiscard]] DriverStatus RunEngineUnlocking(const EngineStep& step, IrqState saved);

}  // namespace monitor
