// An Ethernet PHY of the model: the management registers that every PHY has, and a link.
#pragma once

#include <array>
#include <cstdint>

#include "chip/state.h"

namespace chip {

class Phy {
 public:
  static constexpr unsigned kRegisters = 32;

  Phy() { Reset(); }

  /// Power-on values of the registers; what is attached stays attached.
  void Reset();
  void State(StateArchive& archive);

  /// A partner is attached (true) or not.
  void SetLink(bool up);
  [[nodiscard]] bool LinkUp() const { return link_up_; }

  // Management accesses; `reg` is below kRegisters. A load of the status register ends the
  // memory of a lost link.
  [[nodiscard]] std::uint16_t Load(unsigned reg);
  void Store(unsigned reg, std::uint16_t value);

  /// What a register holds, bypassing the management interface. The link's own bits are added.
  void Set(unsigned reg, std::uint16_t value) { registers_[reg] = value; }

 private:
  [[nodiscard]] std::uint16_t LoadStatus();
  void StoreControl(std::uint16_t value);

  std::array<std::uint16_t, kRegisters> registers_;
  bool link_up_ = false;
  bool link_was_lost_ = true;  ///< Since the last load of the status register.
};

}  // namespace chip
