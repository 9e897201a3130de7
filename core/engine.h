// The handshake of the table engines: an index register, data registers, and a command byte
// with ready bits, a start bit that is pulsed, and a done bit that is awaited.
#pragma once

#include "core/engine_fields.h"
#include "core/irq_guard.h"
#include "core/long_wait.h"

namespace monitor {

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

/// Bits of the command byte that a step sets or clears besides those of the handshake.
struct OtherBits {
  std::uint8_t set = 0;
  std::uint8_t clear = 0;
};

/// A step that reads: starts with the direction clear and awaits `read_done`. Bits that are not
/// named keep their values.
[[nodiscard]] consteval EngineStep ReadStep(Reg8 command, OtherBits others = {},
                                            const EngineFields& fields = {}) {
  const unsigned set = fields.start.Mask() | others.set;
  const unsigned clear = fields.read_done.Mask() | fields.write->Mask() | others.clear;
  return {command, static_cast<std::uint8_t>(set), static_cast<std::uint8_t>(~clear),
          fields.read_done, fields.start};
}

/// A step that writes: starts with the direction set and awaits `write_done`.
[[nodiscard]] consteval EngineStep WriteStep(Reg8 command, OtherBits others = {},
                                             const EngineFields& fields = {}, PulseEnd end = {}) {
  const unsigned set = fields.start.Mask() | fields.write->Mask() | others.set;
  const unsigned clear = fields.write_done.Mask() | others.clear;
  return {command,
          static_cast<std::uint8_t>(set),
          static_cast<std::uint8_t>(~clear),
          fields.write_done,
          fields.start,
          end};
}

/// True when both ready bits are set: one load.
[[nodiscard]] bool EngineReady(Reg8 command);

/// The start pulse: the command byte becomes (old OR set) AND keep; after a short delay the pulse
/// ends. No check, no wait.
void PulseEngine(const EngineStep& step);

/// Waits for the step's done bit, without a time limit. kNotReady when the operator gave up.
[[nodiscard]] DriverStatus AwaitEngine(const EngineStep& step);

/// Ready check, pulse, wait. kNotReady, with nothing started, when the engine is busy.
[[nodiscard]] DriverStatus RunEngine(const EngineStep& step);

/// RunEngine inside an IrqLock bracket that the caller opened: `lock` is released right after
/// the pulse, before the wait, or at once when the engine is busy.
[[nodiscard]] DriverStatus RunEngineUnlocking(const EngineStep& step, IrqGuard& lock);

}  // namespace monitor
