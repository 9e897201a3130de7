// A port with a MAC: its link, its loopback, and the frames that wait to leave it.
#pragma once

#include <deque>
#include <optional>

#include "chip/register_file.h"
#include "core/port_id.h"
#include "mac/port_config_registers.h"

namespace chip {

/// A frame to be sent, in its buffer. It leaves with what the buffer holds by then.
struct Transmission {
  std::uint8_t handle;
  std::uint16_t length;  ///< In bytes, from 1 to kLongestFrame.
};

class Port {
 public:
  static constexpr std::size_t kLongestQueue = 256;  ///< Frames that a port keeps while down.

  Port(RegisterFile& registers, monitor::PortId id) : registers_(registers), id_(id) {}

  void Reset() { queue_.clear(); }
  void State(StateArchive& archive);

  [[nodiscard]] monitor::PortId Id() const { return id_; }

  /// True when the port is switched on.
  [[nodiscard]] bool LinkUp() const {
    const std::uint8_t control = registers_.Get(monitor::kMacControl[monitor::IndexOf(id_)]);
    return monitor::kMacLinkUp.Get(control) != 0;
  }

  /// True when what the port sends comes back to it, and the wire is cut off.
  [[nodiscard]] bool LoopedBack() const {
    return (registers_.Get(monitor::kLoopback) >> 2 * monitor::IndexOf(id_) & 1) != 0;
  }

  /// Queues a transmission; false when the queue is full.
  [[nodiscard]] bool Queue(Transmission transmission);

  /// Takes the next transmission; nothing when none waits or the port is down.
  [[nodiscard]] std::optional<Transmission> NextDeparture();

  /// What waits, the next to leave first.
  [[nodiscard]] const std::deque<Transmission>& Waiting() const { return queue_; }

 private:
  RegisterFile& registers_;
  monitor::PortId id_;
  std::deque<Transmission> queue_;
};

}  // namespace chip
