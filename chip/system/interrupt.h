// The interrupt controller of the model: latches events until software acknowledges them.
#pragma once

#include <functional>

#include "chip/register_file.h"

namespace chip {

class InterruptController {
 public:
  explicit InterruptController(RegisterFile& registers);
  InterruptController(const InterruptController&) = delete;
  InterruptController& operator=(const InterruptController&) = delete;

  void Reset();

  /// Latches the events of `source`, a status value.
  void Raise(monitor::Field source);

  /// As long as a source is held, its event cannot be acknowledged away.
  void Hold(monitor::Field source, bool held);

  /// Called before the status is loaded; the outside may raise events. May be empty.
  std::function<void()> before_status;

 private:
  RegisterFile& registers_;
  std::uint16_t held_ = 0;
};

}  // namespace chip
