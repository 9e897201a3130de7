#include "core/filter_switch.h"

#include "core/filter_registers.h"
#include "core/irq_guard.h"

namespace monitor {

std::uint8_t ReadFilter(Field filter) { return filter.Get(Read(kFilterControl)); }

void WriteFilter(Field filter, bool on) {
  IrqGuard lock;
  AssignBits(kFilterControl, filter, on);
}

}  // namespace monitor
