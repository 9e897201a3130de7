#include "chip/router_chip.h"

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
  registers.Reset();
  reset.Reset();
  timers.Reset();
  gpio.Reset();
  uart.Reset();
  mii.Reset();
  stat_counters.Reset();
  interrupts.Reset();
  frames.Reset();
  nat.Reset();
  l3.Reset();
  mcast.Reset();
  arp.Reset();
  classifier.Reset();
  pst.Reset();
  pdr.Reset();
  pxt.Reset();
}

void RouterChip::State(StateArchive& archive) {
  // What the registers show of a block follows the block, so they come first.
  registers.State(archive);
  archive.Group("reset", [&] { reset.State(archive); });
  archive.Group("timers", [&] { timers.State(archive); });
  archive.Group("gpio", [&] { gpio.State(archive); });
  archive.Group("uart", [&] { uart.State(archive); });
  archive.Group("mii", [&] { mii.State(archive); });
  archive.Group("stat_counters", [&] { stat_counters.State(archive); });
  archive.Group("frames", [&] { frames.State(archive); });
  archive.Group("nat", [&] { nat.State(archive); });
  archive.Group("l3", [&] { l3.State(archive); });
  archive.Group("mcast", [&] { mcast.State(archive); });
  archive.Group("arp", [&] { arp.State(archive); });
  archive.Group("classifier", [&] { classifier.State(archive); });
  archive.Group("pst", [&] { pst.State(archive); });
  archive.Group("pdr", [&] { pdr.State(archive); });
  archive.Group("pxt", [&] { pxt.State(archive); });
}

std::vector<Engine*> RouterChip::Engines() {
  return {
      &stat_counters.engine, &frames.transmit, &frames.cpu.status, &frames.cpu.release,
      &nat.engine,           &l3.engine,       &mcast.engine,      &arp.engine,
      &classifier.engine,    &pst.engine,      &pdr.engine,        &pxt.engine,
  };
}

Engine* RouterChip::FindEngine(const std::string& name) {
  for (Engine* engine : Engines()) {
    if (engine->Name() == name) return engine;
  }
  return nullptr;
}

std::vector<std::string> RouterChip::FaultNames() {
  std::vector<std::string> names{"reset", "mii"};
  for (const Engine* engine : Engines()) names.push_back(engine->Name());
  return names;
}

bool RouterChip::SetFault(const std::string& name, Fault fault) {
  if (name == "reset") {
    reset.SetFault(fault);
    return true;
  }
  if (name == "mii") {
    mii.SetFault(fault);
    return true;
  }
  Engine* const engine = FindEngine(name);
  if (engine != nullptr) engine->SetFault(fault);
  return engine != nullptr;
}

}  // namespace chip
