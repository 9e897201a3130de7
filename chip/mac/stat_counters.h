// The statistic counters of the model and their engine: 28 per port, in their documented widths,
// with an overflow bit each.
#pragma once

#include <array>

#include "chip/block.h"
#include "chip/engine.h"
#include "chip/per_mac_port.h"

namespace chip {

class StatCounters : public Block {
 public:
  static constexpr unsigned kCounters = 28;

  explicit StatCounters(RegisterFile& registers);
  StatCounters(const StatCounters&) = delete;
  StatCounters& operator=(const StatCounters&) = delete;

  [[nodiscard]] const char* Name() const override { return "stat_counters"; }
  void Reset() override;
  void State(StateArchive& archive) override;
  [[nodiscard]] std::vector<FaultPoint*> FaultPoints() override { return {&engine}; }

  /// Adds `amount` to a counter of a port with a MAC. A counter that passes the end of its
  /// width starts again at 0 and raises its overflow bit.
  void Count(monitor::PortId port, unsigned counter, std::uint32_t amount);

  PerMacPort<std::array<std::uint32_t, kCounters>> counters{};
  PerMacPort<std::uint32_t> overflow{};  ///< Bit i belongs to counter i.
  Engine engine;

 private:
  /// What has been stored since the last start: the next write applies only that.
  struct Stored {
    bool word_a = false;
    bool word_b = false;
    bool overflow = false;
  };

  void PortState(StateArchive& archive, monitor::PortId port);
  bool Run(bool write);
  void LoadWindow(monitor::PortId port, unsigned group);
  void ApplyWindow(monitor::PortId port, unsigned group);

  RegisterFile& registers_;
  Stored stored_;
};

}  // namespace chip
