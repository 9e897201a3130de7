// What the frames of a port add to its statistic counters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace chip {

/// Counter `counter` (0 to 27) of a MAC port (0 WAN, 1 LAN, 2 DMZ) goes up by `amount`.
using CountHook = std::function<void(unsigned port, unsigned counter, std::uint32_t amount)>;

class FrameStatistics {
 public:
  /// Frames longer than this, without their check sequence, are oversize.
  static constexpr std::size_t kLongestFrame = 1524;

  // Each of these counts for MAC ports only.
  void Received(unsigned port, std::span<const std::uint8_t> frame) const;
  void Dropped(unsigned port) const;
  void Sent(unsigned port, std::span<const std::uint8_t> frame) const;
  void SendFailed(unsigned port) const;

  /// Empty when nobody counts.
  CountHook count;

 private:
  void Count(unsigned port, unsigned counter, std::size_t amount = 1) const;
};

}  // namespace chip
