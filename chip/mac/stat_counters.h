// The statistic counters of the model and their engine: 28 per port, in their documented widths,
// with an overflow bit each.
#pragma once

#include <array>

#include "chip/engine.h"
#include "chip/mac/mac_ports.h"

namespace chip {

class StatCounters {
 public:
  static constexpr unsigned kCounters = 28;

  explicit StatCounters(RegisterFile& registers);
  StatCounters(const StatCounters&) = delete;
  StatCounters& operator=(const StatCounters&) = delete;

  void Reset();
  void State(StateArchive& archive);

  /// Adds `amount` to a counter of a port below kMacPorts. A counter that passes the end of its
  /// width starts again at 0 and raises its overflow bit.
  void Count(unsigned port, unsigned counter, std::uint32_t amount);

  std::array<std::array<std::uint32_t, kCounters>, kMacPorts> counters{};
  std::array<std::uint32_t, kMacPorts> overflow{};  ///< Bit i belongs to counter i.
  Engine engine;

 private:
  /// What has been stored since the last start: the next write applies only that.
  struct Stored {
    bool word_a = false;
    bool word_b = false;
    bool overflow = false;
  };

  void PortState(StateArchive& archive, unsigned port);
  bool Run(bool write);
  void LoadWindow(unsigned port, unsigned group);
  void ApplyWindow(unsigned port, unsigned group);

  RegisterFile& registers_;
  Stored stored_;
};

}  // namespace chip
