#include "chip/mac/forward_control.h"

#include "mac/forward_control_registers.h"

namespace chip {

void DefineForwardControl(RegisterFile& registers) {
  registers.Define(monitor::kMtu);
  registers.Define(monitor::kPppControl);
  registers.Define(monitor::kForwardAll);
  registers.Define(monitor::kForwardFilter);
}

}  // namespace chip
