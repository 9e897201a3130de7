// A session on a chip that is switched off before every line: its state is saved, and loaded again
// once nothing is left of it. The screen must not show a difference.
#include "mac/frame.h"
#include "mac/packet_service.h"
#include "machine/state/state_text.h"
#include "support/session.h"

namespace {

/// As at power-on, with nothing attached and the monitor's settings forgotten.
void SwitchOff(chip::RouterChip& chip) {
  chip.Reset();
  chip.gpio.SetInputs(0);
  for (const monitor::PortId port : monitor::kMacPorts) chip.mii.SetLink(port, false);
  monitor::ReceiveMode = monitor::kReceiveManual;
  monitor::ArpAutoReply = 0;
  monitor::TransmitCursor = 1;
}

}  // namespace

void BeforeKeys(SessionState& state) {
  const std::string saved = board::StateText(state.chip);
  SwitchOff(state.chip);
  board::ReplaceState(saved, state.chip);
  if (board::StateText(state.chip) != saved) throw SessionError("the loaded state is another");
}
