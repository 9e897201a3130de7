// The general-purpose pins of the model: outputs show what is driven, inputs what comes from
// outside, and edges on inputs raise status bits.
#pragma once

#include "chip/block.h"
#include "chip/register_file.h"

namespace chip {

class Gpio : public Block {
 public:
  explicit Gpio(RegisterFile& registers);
  Gpio(const Gpio&) = delete;
  Gpio& operator=(const Gpio&) = delete;

  [[nodiscard]] const char* Name() const override { return "gpio"; }

  /// Leaves the levels from outside as they are.
  void Reset() override;
  void State(StateArchive& archive) override;

  /// Drives the pins from outside, one bit a pin, until the next call. Pins that are outputs do
  /// not show it.
  void SetInputs(std::uint8_t levels);

 private:
  void ShowPins();

  RegisterFile& registers_;
  std::uint8_t driven_ = 0;  ///< What was last stored to the data register.
  std::uint8_t inputs_ = 0;
};

}  // namespace chip
