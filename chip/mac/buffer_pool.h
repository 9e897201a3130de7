// Which frame buffers are in the pool, held by the CPU, or used by transmissions.
#pragma once

#include <array>
#include <deque>
#include <optional>

#include "chip/state.h"
#include "mac/frame_registers.h"

namespace chip {

/// Receive buffers (handles from kFirstReceiveHandle on) return to the end of the pool once neither
/// held nor used. The others always belong to the software; only their uses are counted.
class BufferPool {
 public:
  BufferPool() { Reset(); }

  /// All receive buffers are in the pool, in order of handle.
  void Reset();

  /// Lists the pool and what the CPU holds. When they are replaced, no buffer is in use, until
  /// AddUse has been called for each transmission that waits and RequireAll says that none is lost.
  void State(StateArchive& archive);
  void RequireAll(StateArchive& archive) const;

  [[nodiscard]] std::size_t Free() const { return pool_.size(); }

  /// Takes the buffer that has been in the pool longest, for the caller to Hold or AddUse. Nothing
  /// when the pool is empty.
  [[nodiscard]] std::optional<std::uint8_t> Take();

  // The CPU has a buffer until it gives it back.
  void Hold(std::uint8_t handle) { buffers_[handle].held = true; }
  [[nodiscard]] bool Held(std::uint8_t handle) const { return buffers_[handle].held; }
  void GiveBack(std::uint8_t handle);

  // Each transmission of a buffer is a use of it, from the time when it is queued until it is over.
  void AddUse(std::uint8_t handle) { ++buffers_[handle].uses; }
  void EndUse(std::uint8_t handle);

  /// Uses of the buffer, the hold on it included.
  [[nodiscard]] unsigned Uses(std::uint8_t handle) const;

 private:
  struct Buffer {
    bool pooled = false;
    bool held = false;
    unsigned uses = 0;  ///< Transmissions that still need it.
  };

  void ReturnIfUnused(std::uint8_t handle);
  /// Makes the buffers what the pool and `held` say.
  void Rebuild(StateArchive& archive, const std::deque<std::uint8_t>& held);

  std::array<Buffer, monitor::kBuffers> buffers_;
  std::deque<std::uint8_t> pool_;  ///< The next to be taken first.
};

/// Throws, when values are replaced, for the member `name` of the state that is wrong about a
/// buffer; `reason` follows the buffer's number.
void RequireOfBuffer(StateArchive& archive, bool holds, const char* name, unsigned handle,
                     const char* reason);

}  // namespace chip
