// The MII management interface of the model, with a PHY for each external port.
#pragma once

#include "chip/engine.h"
#include "chip/per_mac_port.h"
#include "chip/system/phy.h"

namespace chip {

class MiiInterface {
 public:
  explicit MiiInterface(RegisterFile& registers);
  MiiInterface(const MiiInterface&) = delete;
  MiiInterface& operator=(const MiiInterface&) = delete;

  void Reset();
  void State(StateArchive& archive);

  /// What the interface does instead of working. A failing access reads all ones and writes
  /// nothing.
  void SetFault(Fault fault) { fault_ = fault; }

  /// The PHY at that address; null when there is none.
  [[nodiscard]] Phy* FindPhy(unsigned address);

  /// Attaches a partner to a port with a MAC, or takes it away.
  void SetLink(monitor::PortId port, bool up);

 private:
  void BeforeLoad();
  void AfterStore(std::uint16_t stored);
  void Complete();
  void Publish();

  RegisterFile& registers_;
  PerMacPort<Phy> phys_;
  Fault fault_;
  std::uint16_t started_ = 0;  ///< The command of the running access.
  unsigned loads_left_ = 0;    ///< Status loads until the running access is over; 0 when idle.
  bool read_valid_ = false;
};

}  // namespace chip
