#include <cstdint>
#include <cstring>

#include "console/console_port.h"
#include "console/format.h"
#include "debug_monitor/device.h"
#include "shell/shell.h"

namespace monitor {
namespace {

constexpr int kNoDevice = -19;

/// Start-up lines are not console lines: they do not count towards the console column.
void Say(const char* text) { ConsoleSend(text, std::strlen(text)); }

int Main() {
  if (!DeviceOpen()) {
    Say("db:open fails!\n");
    ConsoleFlush();
    return kNoDevice;
  }
  // The mapping call's answer is shown, not judged: the operator reads whether it worked.
  const auto window = reinterpret_cast<std::uintptr_t>(DeviceMapWindow());
  const FormatArg shown[] = {static_cast<std::uint32_t>(window)};
  char line[40];
  FormatText(line, sizeof(line), "db:ret of mmap is 0x%x\n", shown);
  Say(line);
  // It has to be seen even when the first command faults.
  ConsoleFlush();
  return RunShell();
}

}  // namespace
}  // namespace monitor

int main() { return monitor::Main(); }
