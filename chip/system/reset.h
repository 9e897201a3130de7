// The reset bits of the model, what follows a hardware reset, and the chip's identity.
#pragma once

#include <functional>

#include "chip/engine.h"

namespace chip {

/// What the model calls itself: "VBQ5910 Version  2".
inline constexpr std::uint16_t kModelNumber = 0x5910;
inline constexpr std::uint8_t kModelRevision = 2;

/// A reset takes effect when its bit is cleared after it was set. The done bit is set at power-on,
/// clear while a reset bit is held, and rises at the first load after the last one is released.
class ResetControl {
 public:
  /// What the resets bring back to power-on state; the whole chip includes this block.
  struct Targets {
    std::function<void()> whole_chip;
    std::function<void()> chip_selects;
  };

  ResetControl(RegisterFile& registers, Targets targets);
  ResetControl(const ResetControl&) = delete;
  ResetControl& operator=(const ResetControl&) = delete;

  /// As for an engine: the done bit never rises, reads as 0, or rises at that load after the
  /// release; or resets have no effect.
  void SetFault(Fault fault) { fault_ = fault; }
  void Reset();
  void State(StateArchive& archive);

 private:
  void BeforeLoad();
  void AfterStore(std::uint8_t stored);
  void Restore(std::uint8_t released);
  void Publish();

  RegisterFile& registers_;
  Targets targets_;
  Fault fault_;

  std::uint8_t held_ = 0;  ///< The reset bits that are set.
  bool done_ = true;
  unsigned loads_left_ = 0;  ///< Loads until the done bit rises; 0 when nothing is under way.
};

}  // namespace chip
