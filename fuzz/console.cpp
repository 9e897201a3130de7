// Any bytes typed at the whole monitor, on a model with any faults.
//
// An input begins with a byte that gives the number of faults, two bytes for each of them (the
// engine and what is wrong with it), and continues with what is typed.
#include <memory>

#include "console/console_port.h"
#include "core/long_wait.h"
#include "fuzz/input.h"
#include "mac/packet_service.h"
#include "shell/shell.h"

namespace {

constexpr std::uint8_t kMostFaults = 3;

fuzz::Input g_typed;

}  // namespace

namespace monitor {

int ConsoleReadChar() { return g_typed.Empty() ? -1 : g_typed.Byte(); }
bool ConsoleEnded() { return g_typed.Empty(); }
void ConsoleSend(const char* /*text*/, std::size_t /*count*/) {}
void ConsoleFlush() {}
void ConsoleWait(long /*microseconds*/) {}
void ConsoleIdle(long /*microseconds*/) {}
bool WaitInterrupted(const Awaited& /*awaited*/) { return true; }

}  // namespace monitor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  g_typed = fuzz::Input(data, size);
  const auto chip = std::make_unique<chip::RouterChip>();
  chip::Attach(*chip);
  for (unsigned faults = g_typed.Byte() % (kMostFaults + 1); faults != 0; --faults) {
    fuzz::SetFault(*chip, g_typed);
  }
  monitor::ReceiveMode = 0;
  monitor::ArpAutoReply = 0;
  monitor::RunShell();
  return 0;
}
