#include "core/filter_switch.h"

#include "core/filter_registers.h"

namespace monitor {

std::uint8_t ReadFilter(Field filter) { return filter.Get(Read(kFilterControl)); }

void WriteFilter(Field filter, bool on) {
  IrqState saved;
  IrqLock(&saved);
  AssignBits(kFilterControl, filter, on);
  IrqUnlock(saved);
}

}  // namespace monitor
