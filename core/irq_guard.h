#pragma once

#include "core/bus.h"

namespace monitor {

/// An IrqLock bracket that ends with its scope, or before it by Release.
class IrqGuard {
 public:
  IrqGuard() { IrqLock(&saved_); }
  ~IrqGuard() { Release(); }
  IrqGuard(const IrqGuard&) = delete;
  IrqGuard& operator=(const IrqGuard&) = delete;

  /// Closes the bracket, if it is open.
  void Release() {
    if (held_) IrqUnlock(saved_);
    held_ = false;
  }

 private:
  IrqState saved_;
  bool held_ = true;
};

}  // namespace monitor
