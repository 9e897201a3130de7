// What the chip asks of a block that is more than plain storage.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "chip/fault.h"
#include "chip/state.h"

namespace chip {

class Block {
 public:
  virtual ~Block() = default;

  /// The member of a saved state that holds the block's.
  [[nodiscard]] virtual const char* Name() const = 0;

  /// Power-on state of everything but the registers, which have been reset before.
  virtual void Reset() = 0;

  /// Everything that the registers do not hold; they come before.
  virtual void State(StateArchive& archive) = 0;

  /// What of the block can be made to fail.
  [[nodiscard]] virtual std::vector<FaultPoint*> FaultPoints() { return {}; }

  /// When the block will next do something by itself, in nanoseconds of the chip's time; nothing
  /// when it waits for software or for the outside.
  [[nodiscard]] virtual std::optional<std::uint64_t> NextDeadline() const { return {}; }

  /// Does what is due by `now`, the time of the deadline. The block then has a later deadline or
  /// none.
  virtual void Act(std::uint64_t /*now*/) {}
};

}  // namespace chip
