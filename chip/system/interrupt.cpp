#include "chip/system/interrupt.h"

#include "system/interrupt_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

InterruptController::InterruptController(RegisterFile& registers) : registers_(registers) {
  registers.Define(kInterruptStatus, {.write_one_to_clear = 0xFFFF,
                                      .before_load =
                                          [this] {
                                            if (before_status) before_status();
                                          },
                                      .after_store =
                                          [this](std::uint32_t) {
                                            registers_.Set(
                                                kInterruptStatus,
                                                registers_.Get(kInterruptStatus) | held_);
                                          }});
  registers.Define(kInterruptGroup);
  registers.Define(kInterruptMask);
}

void InterruptController::Reset() { held_ = 0; }

void InterruptController::Raise(Field source) {
  const unsigned events = registers_.Get(kInterruptStatus);
  registers_.Set(kInterruptStatus, events | source.Mask<std::uint16_t>());
}

void InterruptController::Hold(Field source, bool held) {
  const unsigned bits = source.Mask<std::uint16_t>();
  held_ = static_cast<std::uint16_t>(held ? held_ | bits : held_ & ~bits);
  if (held) Raise(source);
}

}  // namespace chip
