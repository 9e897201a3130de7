// An operation that software starts and then waits for, load by load of a status register.
#pragma once

#include <algorithm>

#include "chip/fault.h"
#include "chip/state.h"

namespace chip {

class Operation {
 public:
  /// Without a fault the operation is over at that load after its start.
  explicit Operation(unsigned usual_loads) : usual_loads_(usual_loads) {}

  void SetFault(const Fault& fault) { fault_ = fault; }

  void Start() {
    // Nothing but a load ends an operation, so it takes at least one.
    loads_left_ = fault_.kind == Fault::Kind::kSlow ? std::max(fault_.loads, 1U) : usual_loads_;
  }
  void Abandon() { loads_left_ = 0; }
  [[nodiscard]] bool Running() const { return loads_left_ != 0; }

  /// Counts a load of the status; true when the operation ends with it.
  [[nodiscard]] bool CountLoad() {
    return Running() && fault_.kind != Fault::Kind::kHang && --loads_left_ == 0;
  }

  /// True when an operation that ends is to have no effect.
  [[nodiscard]] bool Fails() const { return fault_.kind == Fault::Kind::kFail; }

  /// True when the status must not show that the operation is over.
  [[nodiscard]] bool LooksBusy() const { return fault_.kind == Fault::Kind::kBusy; }

  void State(StateArchive& archive) { archive.Count("loads_left", loads_left_); }

 private:
  unsigned usual_loads_;
  Fault fault_;
  unsigned loads_left_ = 0;  ///< 0 when nothing is running.
};

}  // namespace chip
