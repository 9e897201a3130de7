#include "chip/mac/frame_statistics.h"

#include <algorithm>

#include "chip/mac/frame_limits.h"

namespace chip {
namespace {

/// The FCS is on the wire but not in the frames that the model passes around.
constexpr std::size_t kCheckSequence = 4;

/// The statistic counters that frames move, by index.
enum Counter : unsigned {
  kBytesSent = 0,
  kUnicastSent = 1,
  kSendFailed = 2,
  kNonUnicastSent = 4,
  kBytesReceived = 5,
  kFramesReceived = 6,
  kTotalBytesReceived = 7,
  kTotalFramesReceived = 8,
  kMulticastReceived = 10,
  kBroadcastReceived = 11,
  kSize64 = 12,
  kSize65To127 = 14,
  kOversize = 15,
  kSize128To255 = 16,
  kSize256To511 = 17,
  kSize512To1023 = 18,
  kSize1024To1528 = 19,
  kUndersize = 22,
  kDropped = 26,
};

/// Which counter a frame of up to `longest` bytes on the wire moves.
struct SizeClass {
  std::size_t longest;
  Counter counter;
};

constexpr SizeClass kSizeClasses[] = {
    {63, kUndersize},     {64, kSize64},          {127, kSize65To127},     {255, kSize128To255},
    {511, kSize256To511}, {1023, kSize512To1023}, {1528, kSize1024To1528},
};

bool IsGroup(std::span<const std::uint8_t> frame) { return !frame.empty() && (frame[0] & 1) != 0; }

bool IsBroadcast(std::span<const std::uint8_t> frame) {
  constexpr std::size_t kAddressSize = 6;
  return frame.size() >= kAddressSize &&
         std::all_of(frame.begin(), frame.begin() + kAddressSize,
                     [](std::uint8_t byte) { return byte == 0xFF; });
}

}  // namespace

void FrameStatistics::Count(monitor::PortId port, unsigned counter, std::size_t amount) {
  if (!monitor::IsMacPort(port)) return;
  counters_.Count(port, counter, static_cast<std::uint32_t>(amount));
}

void FrameStatistics::Received(monitor::PortId port, std::span<const std::uint8_t> frame) {
  const std::size_t wire_length = frame.size() + kCheckSequence;
  Count(port, kTotalFramesReceived);
  Count(port, kTotalBytesReceived, wire_length);
  if (frame.size() > kLongestFrame) {
    Count(port, kOversize);
    return;
  }
  Count(port, kFramesReceived);
  Count(port, kBytesReceived, wire_length);
  if (IsGroup(frame)) Count(port, IsBroadcast(frame) ? kBroadcastReceived : kMulticastReceived);
  for (const SizeClass& size : kSizeClasses) {
    if (wire_length > size.longest) continue;
    Count(port, size.counter);
    break;
  }
}

void FrameStatistics::Dropped(monitor::PortId port) { Count(port, kDropped); }

void FrameStatistics::Sent(monitor::PortId port, std::span<const std::uint8_t> frame) {
  Count(port, kBytesSent, frame.size() + kCheckSequence);
  Count(port, IsGroup(frame) ? kNonUnicastSent : kUnicastSent);
}

void FrameStatistics::SendFailed(monitor::PortId port) { Count(port, kSendFailed); }

}  // namespace chip
