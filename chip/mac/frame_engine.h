// The frame engine of the model: moves frames between the ports and the shared buffer memory,
// offers received frames to the CPU, sends buffers, and counts who uses them.
#pragma once

#include <array>
#include <deque>
#include <functional>
#include <span>

#include "chip/engine.h"
#include "chip/mac/frame_memory.h"
#include "chip/mac/frame_statistics.h"
#include "chip/system/interrupt.h"

namespace chip {

/// Why the CPU gets a frame.
enum class ReceiveReason : std::uint8_t {
  kStation = 1,    ///< Sent to one of the chip's own MAC addresses.
  kBroadcast = 2,  ///< Sent to the broadcast address.
  kMulticast = 3,  ///< Sent to a multicast group.
  kOther = 4,      ///< Sent to another station.
};

class FrameEngine {
 public:
  static constexpr unsigned kCpuPort = 3;            ///< Frames sent to it come back as received.
  static constexpr std::size_t kLongestQueue = 256;  ///< Frames that a port keeps while down.

  FrameEngine(RegisterFile& registers, InterruptController& interrupts, StatCounters& counters);
  FrameEngine(const FrameEngine&) = delete;
  FrameEngine& operator=(const FrameEngine&) = delete;

  void Reset();
  void State(StateArchive& archive);

  /// A frame, without its FCS, arrives at a port from outside (from the CPU itself on
  /// kCpuPort). False when it is lost: the port is down or looped back, the frame too long, no
  /// buffer free.
  bool Receive(unsigned port, std::span<const std::uint8_t> frame);

  /// Sends what waits for ports that are up. To be called when one has come up.
  void SendQueued();

  [[nodiscard]] std::size_t FreeBuffers() const { return pool_.size(); }

  /// True while received frames wait to be acknowledged.
  [[nodiscard]] bool Waiting() const { return !received_.empty(); }

  /// True when the port is switched on.
  [[nodiscard]] bool LinkUp(unsigned port) const;

  /// A frame leaves a port. Empty when nothing is attached.
  std::function<void(unsigned port, std::span<const std::uint8_t> frame)> on_transmit;

  FrameMemory memory;
  Engine transmit;  ///< "tx"
  Engine status;    ///< "status"
  Engine release;   ///< "release"

 private:
  struct Buffer {
    bool pooled = false;   ///< Waits in the pool for a received frame.
    bool held = false;     ///< Handed to the CPU and not released.
    bool offered = false;  ///< Holds a received frame that is not acknowledged yet.
    unsigned queued = 0;   ///< Transmissions that still need it.
  };
  struct Transmission {
    std::uint8_t handle;
    std::uint16_t length;
  };

  [[nodiscard]] bool LoopedBack(unsigned port) const;
  [[nodiscard]] ReceiveReason Classify(unsigned port, std::span<const std::uint8_t> frame) const;

  bool Arrive(unsigned port, std::span<const std::uint8_t> frame);
  bool HandToCpu(unsigned port, ReceiveReason reason, std::span<const std::uint8_t> frame);
  void OfferNext();
  void TakeAcknowledge(std::uint8_t control);

  void Transmit();
  void SendQueued(unsigned port);
  void Send(unsigned port, Transmission transmission);
  void CountUses();
  void Release();
  void ReturnIfUnused(std::uint8_t handle);

  void QueueState(StateArchive& archive);
  /// What the other members say about each buffer.
  void RebuildBuffers(StateArchive& archive, const std::deque<std::uint8_t>& held);

  RegisterFile& registers_;
  InterruptController& interrupts_;
  FrameStatistics statistics_;
  std::array<Buffer, 256> buffers_;
  std::deque<std::uint8_t> pool_;
  std::deque<std::uint8_t> received_;  ///< Not yet acknowledged, the offered one first.
  std::array<std::deque<Transmission>, kMacPorts> queues_;
  bool acknowledging_ = false;
};

}  // namespace chip
