#include "chip/router_chip.h"

#include <algorithm>

#include "chip/mac/forward_control.h"
#include "chip/mac/port_config.h"
#include "chip/mac/station_address.h"
#include "chip/qos/qos.h"
#include "chip/qos/rate_control.h"
#include "chip/system/tdm.h"
#include "core/filter_registers.h"

namespace chip {

RouterChip::RouterChip() {
  DefineTdm(registers);
  DefinePortConfig(registers, [this] { frames.SendQueued(); });
  DefineStationAddresses(registers);
  DefineForwardControl(registers);
  DefineQos(registers);
  DefineRateControl(registers);
  registers.Define(monitor::kFilterControl);
}

void RouterChip::Reset() {
  // What blocks share; the others find it reset.
  registers.Reset();
  interrupts.Reset();
  for (Block* block : blocks) block->Reset();
}

void RouterChip::State(StateArchive& archive) {
  // What the registers show of a block follows the block, so they come first.
  registers.State(archive);
  for (Block* block : blocks) {
    archive.Group(block->Name(), [&] { block->State(archive); });
  }
}

std::vector<FaultPoint*> RouterChip::FaultPoints() {
  std::vector<FaultPoint*> all;
  for (Block* block : blocks) {
    const std::vector<FaultPoint*> points = block->FaultPoints();
    all.insert(all.end(), points.begin(), points.end());
  }
  return all;
}

std::vector<std::string> RouterChip::FaultNames() {
  std::vector<std::string> names;
  for (const FaultPoint* point : FaultPoints()) names.emplace_back(point->Name());
  return names;
}

bool RouterChip::SetFault(const std::string& name, const Fault& fault) {
  for (FaultPoint* point : FaultPoints()) {
    if (point->Name() != name) continue;
    point->SetFault(fault);
    return true;
  }
  return false;
}

void RouterChip::Advance(std::uint64_t now) {
  for (Block* block = NextToAct(); block != nullptr; block = NextToAct()) {
    const std::uint64_t deadline = *block->NextDeadline();
    if (deadline > now) break;
    reached_ = std::max(reached_, deadline);
    block->Act(reached_);
  }
  reached_ = std::max(reached_, now);
}

std::optional<std::uint64_t> RouterChip::NextDeadline() const {
  const Block* const block = NextToAct();
  return block != nullptr ? block->NextDeadline() : std::nullopt;
}

std::uint64_t RouterChip::Now() const { return clock ? std::max(clock(), reached_) : reached_; }

Block* RouterChip::NextToAct() const {
  Block* next = nullptr;
  std::uint64_t earliest = 0;
  for (Block* block : blocks) {
    const std::optional<std::uint64_t> deadline = block->NextDeadline();
    if (!deadline || (next != nullptr && *deadline >= earliest)) continue;
    next = block;
    earliest = *deadline;
  }
  return next;
}

}  // namespace chip
