// Where the handshake's bits lie in the command register of an engine, for the driver's steps, the
// model and the exported map.
#pragma once

#include <optional>

#include "core/registers.h"

namespace monitor {

// Every engine of a table has these two.
inline constexpr Field kEngineReadReady{0, 0, "read_ready", "idle, and the last read is done"};
inline constexpr Field kEngineWriteReady{1, 1, "write_ready", "idle, and the last write is done"};

// The other bits of most tables' command bytes.
inline constexpr Field kEngineStart{2, 2, "start", "pulsed to start a step"};
inline constexpr Field kEngineWrite{3, 3, "write", "direction"};

/// The fields of a command register, most tables' by default.
struct EngineFields {
  Field start = kEngineStart;
  Field read_done = kEngineReadReady;    ///< Set by the engine when a read step is over,
  Field write_done = kEngineWriteReady;  ///< and a write step; the same field if there is only one.
  std::optional<Field> write = kEngineWrite;  ///< Direction; none where there is only one.
  std::optional<Field> result = {};  ///< Set when the last step succeeded, if there is one.
};

}  // namespace monitor
