// What surrounds the chip: the far ends of its three ports, connected to the frame engine.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "chip/router_chip.h"
#include "host/descriptor.h"
#include "machine/ports/port.h"
#include "machine/ports/port_recorder.h"

namespace board {

/// What the options ask for.
struct NetworkSetup {
  chip::PerMacPort<std::string> ports{{"none", "none", "none"}};
  PortOptions options;
  std::string capture;         ///< File that records every port; empty for none.
  bool keep_settings = false;  ///< The chip's ports have been set, so a boot loader sets nothing.
};

class Network {
 public:
  /// Throws std::runtime_error when something cannot be opened.
  Network(chip::RouterChip& chip, const NetworkSetup& setup);

  /// Replaces what files held before. Throws std::system_error.
  void Start();

  /// Moves frames that have come into the chip. Captures without timing of their own give no
  /// more than the chip has buffers for.
  void Poll();

  /// The monitor is about to wait, for input or WatchedFd. After the wait there is nothing new to
  /// find, so the next look at the interrupt status costs nothing.
  void NoteWait() {
    waited_ = true;
    Flush();
  }

  /// Hands on what the ports were sent.
  void Flush();

  /// Descriptor that is readable when Poll has something to do.
  [[nodiscard]] int WatchedFd() const { return watch_.Get(); }

  /// True while captures still have frames for a port that is up, or frames wait for the CPU.
  [[nodiscard]] bool Pending() const;

  /// True when something went wrong that the exit status has to report.
  [[nodiscard]] bool Failed() const;

 private:
  void PollWhenDue();
  void Take(monitor::PortId port);
  void Send(monitor::PortId port, std::span<const std::uint8_t> frame);
  /// Tells the chip and the watch set what has become of the port.
  void UpdateLink(monitor::PortId port);

  chip::RouterChip& chip_;
  chip::PerMacPort<std::unique_ptr<Port>> ports_;
  chip::PerMacPort<int> watched_{{-1, -1, -1}};
  std::optional<PortRecorder> recorder_;
  Descriptor watch_;
  unsigned looks_ = 0;
  bool waited_ = false;
};

}  // namespace board
