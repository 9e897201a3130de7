#include "chip/system/tdm.h"

#include "system/tdm_registers.h"

namespace chip {

void DefineTdm(RegisterFile& registers) {
  registers.Define(monitor::kTdmOnTimer);
  registers.Define(monitor::kTdmInterface);
  registers.Define(monitor::kTdmOffTimer);
  registers.Define(monitor::kTdmControl);
}

}  // namespace chip
