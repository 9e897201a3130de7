#include "chip/qos/rate_control.h"

#include "qos/rate_control_registers.h"

namespace chip {

void DefineRateControl(RegisterFile& registers) {
  for (const monitor::RegisterRow& row : monitor::kRateControlRegisters) {
    registers.Define(monitor::Reg16{.offset = row.offset, .name = row.name});
  }
}

}  // namespace chip
