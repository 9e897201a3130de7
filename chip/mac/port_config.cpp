#include "chip/mac/port_config.h"

#include <utility>

#include "mac/port_config_registers.h"

namespace chip {

void DefinePortConfig(RegisterFile& registers, std::function<void()> on_control) {
  registers.Define(
      monitor::kMacControl,
      {.after_store = [on_control = std::move(on_control)](std::uint32_t) { on_control(); }});
  registers.Define(monitor::kLoopback);
  registers.Define(monitor::kInterfaceType);
}

}  // namespace chip
