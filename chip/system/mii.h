// The MII management interface of the model, with a PHY for each external port.
#pragma once

#include "chip/block.h"
#include "chip/operation.h"
#include "chip/per_mac_port.h"
#include "chip/register_file.h"
#include "chip/system/phy.h"

namespace chip {

class MiiInterface : public Block, public FaultPoint {
 public:
  explicit MiiInterface(RegisterFile& registers);
  MiiInterface(const MiiInterface&) = delete;
  MiiInterface& operator=(const MiiInterface&) = delete;

  [[nodiscard]] const char* Name() const override { return "mii"; }
  void Reset() override;
  void State(StateArchive& archive) override;
  [[nodiscard]] std::vector<FaultPoint*> FaultPoints() override { return {this}; }

  /// A failing access reads all ones and writes nothing.
  void SetFault(const Fault& fault) override { access_.SetFault(fault); }

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
  std::uint16_t started_ = 0;  ///< The command of the running access.
  Operation access_;
  bool read_valid_ = false;
};

}  // namespace chip
