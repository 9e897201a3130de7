// What the chip asks of a block that is more than plain storage.
#pragma once

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
};

}  // namespace chip
