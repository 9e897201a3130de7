// The reset bits of the model, what follows a hardware reset, and the chip's identity.
#pragma once

#include <functional>

#include "chip/block.h"
#include "chip/operation.h"
#include "chip/register_file.h"

namespace chip {

/// What the model calls itself: "VBQ5910 Version  2".
inline constexpr std::uint16_t kModelNumber = 0x5910;
inline constexpr std::uint8_t kModelRevision = 2;

/// A reset takes effect when its bit is cleared after it was set. The done bit is set at power-on,
/// clear while a reset bit is held, and rises at the first load after the last one is released.
class ResetControl : public Block, public FaultPoint {
 public:
  /// What the resets bring back to power-on state; the whole chip includes this block.
  struct Targets {
    std::function<void()> whole_chip;
    std::function<void()> chip_selects;
  };

  ResetControl(RegisterFile& registers, Targets targets);
  ResetControl(const ResetControl&) = delete;
  ResetControl& operator=(const ResetControl&) = delete;

  [[nodiscard]] const char* Name() const override { return "reset"; }
  void Reset() override;
  void State(StateArchive& archive) override;
  [[nodiscard]] std::vector<FaultPoint*> FaultPoints() override { return {this}; }

  /// What never ends, looks busy or takes long is the recovery: the done bit's way up after the
  /// release. A failing reset has no effect.
  void SetFault(const Fault& fault) override { recovery_.SetFault(fault); }

 private:
  void BeforeLoad();
  void AfterStore(std::uint8_t stored);
  void Restore(std::uint8_t released);
  void Publish();

  RegisterFile& registers_;
  Targets targets_;

  std::uint8_t held_ = 0;  ///< The reset bits that are set.
  bool done_ = true;
  Operation recovery_;
};

}  // namespace chip
