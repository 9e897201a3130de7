// Any bytes as a state file. They are refused as such, or they load; what has loaded is saved and
// loaded again without a difference, and the monitor's registers can be read.
#include "machine/state/state_text.h"

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace {

/// Loads everything once, so that every running operation completes.
void LoadWindow(chip::RouterChip& chip) {
  for (unsigned round = 0; round < 2; ++round) {
    for (std::uint32_t offset = 0; offset < chip::RegisterFile::kSize; ++offset) {
      (void)chip.registers.Load(offset, 1);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto chip = std::make_unique<chip::RouterChip>();
  try {
    board::ReplaceState(std::string(data, data + size), *chip);
  } catch (const board::StateError&) {
    return 0;
  }
  const std::string saved = board::StateText(*chip);
  chip->Reset();
  board::ReplaceState(saved, *chip);
  if (board::StateText(*chip) != saved) std::abort();
  LoadWindow(*chip);
  chip->frames.SendQueued();
  return 0;
}
