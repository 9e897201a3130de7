// Any bytes typed at the whole monitor, on a model with any faults.
//
// An input begins with a byte that gives the number of faults, two bytes for each of them (the
// engine and what is wrong with it), and goes on with what is typed.
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "chip/router_chip.h"
#include "core/console_port.h"
#include "mac/packet_service.h"
#include "shell/shell.h"

namespace {

std::span<const std::uint8_t> g_typed;
std::jmp_buf g_end_of_input;

std::uint8_t Take() {
  if (g_typed.empty()) return 0;
  const std::uint8_t byte = g_typed.front();
  g_typed = g_typed.subspan(1);
  return byte;
}

void SetFaults(chip::RouterChip& chip) {
  constexpr std::uint8_t kMostFaults = 3;
  const auto engines = chip.Engines();
  for (unsigned faults = Take() % (kMostFaults + 1); faults != 0; --faults) {
    chip::Engine* const engine = engines[Take() % engines.size()];
    const std::uint8_t kind = Take();
    engine->SetFault({.kind = static_cast<chip::Fault::Kind>(kind % 5), .loads = kind / 5U + 1});
  }
}

}  // namespace

namespace monitor {

int ConsoleReadChar() {
  // The monitor's frames hold nothing that has to be destroyed.
  if (g_typed.empty()) std::longjmp(g_end_of_input, 1);  // NOLINT
  return Take();
}
void ConsoleSend(const char* /*text*/, std::size_t /*count*/) {}
void ConsoleFlush() {}
void ConsoleWait(long /*microseconds*/) {}
bool ConsoleInterrupted() { return true; }

}  // namespace monitor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  g_typed = {data, size};
  const auto chip = std::make_unique<chip::RouterChip>();
  chip::Attach(*chip);
  SetFaults(*chip);
  monitor::ReceiveMode = 0;
  monitor::ArpAutoReply = 0;
  if (setjmp(g_end_of_input) == 0) monitor::RunShell();  // NOLINT
  return 0;
}
