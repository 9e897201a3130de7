// What the frames of a port add to its statistic counters.
#pragma once

#include <cstdint>
#include <span>

#include "chip/mac/stat_counters.h"

namespace chip {

class FrameStatistics {
 public:
  explicit FrameStatistics(StatCounters& counters) : counters_(counters) {}

  // Each of these counts for MAC ports only.
  void Received(monitor::PortId port, std::span<const std::uint8_t> frame);
  void Dropped(monitor::PortId port);
  void Sent(monitor::PortId port, std::span<const std::uint8_t> frame);
  void SendFailed(monitor::PortId port);

 private:
  void Count(monitor::PortId port, unsigned counter, std::size_t amount = 1);

  StatCounters& counters_;
};

}  // namespace chip
