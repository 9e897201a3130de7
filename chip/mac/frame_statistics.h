// What the frames of a port add to its statistic counters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "chip/mac/stat_counters.h"

namespace chip {

class FrameStatistics {
 public:
  /// Frames longer than this, without their FCS, are oversize.
  static constexpr std::size_t kLongestFrame = 1524;

  explicit FrameStatistics(StatCounters& counters) : counters_(counters) {}

  // Each of these counts for MAC ports only.
  void Received(unsigned port, std::span<const std::uint8_t> frame);
  void Dropped(unsigned port);
  void Sent(unsigned port, std::span<const std::uint8_t> frame);
  void SendFailed(unsigned port);

 private:
  void Count(unsigned port, unsigned counter, std::size_t amount = 1);

  StatCounters& counters_;
};

}  // namespace chip
