#include "chip/system/gpio.h"

#include "system/gpio_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

Gpio::Gpio(RegisterFile& registers) : registers_(registers) {
  registers.Define(kGpioDirection);
  registers.Define(kGpioData, {.before_load = [this] { ShowPins(); },
                               .after_store =
                                   [this](std::uint32_t stored) {
                                     driven_ = static_cast<std::uint8_t>(stored);
                                   }});
  registers.Define(kGpioStatus, {.write_one_to_clear = 0xFF});
  registers.Define(kGpioSetting);
  registers.Define(kGpioEnable);
  registers.Define(kGpioTrigger);
}

void Gpio::Reset() { driven_ = 0; }

void Gpio::SetInputs(std::uint8_t levels) {
  const unsigned rising = levels & ~inputs_;
  const unsigned falling = inputs_ & ~levels;
  const unsigned trigger = registers_.Get(kGpioTrigger);
  const unsigned edges = (rising & trigger) | (falling & ~trigger);
  const unsigned heard = registers_.Get(kGpioEnable) & ~registers_.Get(kGpioDirection);
  registers_.Set(kGpioStatus, registers_.Get(kGpioStatus) | (edges & heard));
  inputs_ = levels;
}

void Gpio::ShowPins() {
  const unsigned outputs = registers_.Get(kGpioDirection);
  registers_.Set(kGpioData, (driven_ & outputs) | (inputs_ & ~outputs));
}

void Gpio::State(StateArchive& archive) {
  archive.Hex("driven", driven_);
  archive.Hex("inputs", inputs_);
}

}  // namespace chip
