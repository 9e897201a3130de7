#include "chip/system/mii.h"

#include "system/mii_registers.h"

namespace chip {
namespace {

using namespace monitor;  // NOLINT: the register names

constexpr unsigned kUsualLoads = 4;
constexpr std::uint16_t kNoPhy = 0xFFFF;

constexpr auto kReady = kMiiReady.Mask<std::uint16_t>();
constexpr auto kValid = kMiiReadValid.Mask<std::uint16_t>();

}  // namespace

MiiInterface::MiiInterface(RegisterFile& registers) : registers_(registers), access_(kUsualLoads) {
  registers.Define(kMiiCommand, {.reset = kReady,
                                 .read_only = kReady | kValid,
                                 .before_load = [this] { BeforeLoad(); },
                                 .after_store =
                                     [this](std::uint32_t stored) {
                                       AfterStore(static_cast<std::uint16_t>(stored));
                                     }});
  registers.Define(kMiiWriteData);
  registers.Define(kMiiReadData, {.read_only = 0xFFFF});
}

void MiiInterface::Reset() {
  for (Phy& phy : phys_) phy.Reset();
  started_ = 0;
  access_.Abandon();
  read_valid_ = false;
  Publish();
}

Phy* MiiInterface::FindPhy(unsigned address) {
  for (const PortId port : kMacPorts) {
    if (PhyAddressOf(port) == address) return &phys_[port];
  }
  return nullptr;
}

void MiiInterface::SetLink(PortId port, bool up) { phys_[port].SetLink(up); }

void MiiInterface::BeforeLoad() {
  if (access_.CountLoad()) Complete();
  Publish();
}

void MiiInterface::AfterStore(std::uint16_t stored) {
  if (kMiiStart.Get(stored) != 0) {
    if (access_.Running()) registers_.Complain("mii access started while busy");
    // A byte store that starts an access finds the PHY in the other byte.
    started_ = registers_.Get(kMiiCommand);
    read_valid_ = false;
    access_.Start();
  }
  Publish();
}

void MiiInterface::Complete() {
  Phy* const phy = access_.Fails() ? nullptr : FindPhy(kMiiPhy.Get(started_));
  const unsigned reg = kMiiRegister.Get(started_);
  if (kMiiReadAccess.Get(started_) != 0) {
    registers_.Set(kMiiReadData, phy != nullptr ? phy->Load(reg) : kNoPhy);
    read_valid_ = true;
  } else if (kMiiWriteAccess.Get(started_) != 0 && phy != nullptr) {
    phy->Store(reg, registers_.Get(kMiiWriteData));
  }
}

void MiiInterface::Publish() {
  const bool ready = !access_.Running() && !access_.LooksBusy();
  const unsigned status = ready ? kReady | (read_valid_ ? kValid : 0U) : 0U;
  registers_.Set(kMiiCommand, (registers_.Get(kMiiCommand) & ~(kReady | kValid)) | status);
}

void MiiInterface::State(StateArchive& archive) {
  for (const PortId port : kMacPorts) {
    archive.Group(std::string("phy_") + NameOf(port), [&] { phys_[port].State(archive); });
  }
  archive.Hex("started", started_);
  access_.State(archive);
  archive.Flag("read_valid", read_valid_);
}

}  // namespace chip
