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
  /// Most frames that one port brings in one poll, so that none starves the others.
  static constexpr unsigned kFramesPerPoll = 64;

  /// Throws std::runtime_error when something cannot be opened.
  Network(chip::RouterChip& chip, const NetworkSetup& setup);

  /// Replaces what files held before. Throws std::system_error.
  void Start();

  /// Moves frames that have come into the chip. Those of captures without timing of their own come
  /// when the CPU looks for them, and no more than the chip has buffers for.
  void Poll();

  /// Hands on what the ports were sent.
  void Flush();

  /// Descriptor that is readable when Poll has something to do, or what Watch was given is.
  [[nodiscard]] int WatchedFd() const { return watch_.Get(); }

  /// Has WatchedFd readable while this descriptor is.
  void Watch(int fd) { Watch(fd, monitor::kMacPorts.size()); }

  /// True while captures still have frames for a port that is up, or frames wait for the CPU.
  [[nodiscard]] bool Pending() const;

  /// True when something went wrong that the exit status has to report.
  [[nodiscard]] bool Failed() const;

 private:
  /// The CPU looks for a frame: captures without timing of their own give it theirs.
  void DrawCaptures();
  void Take(monitor::PortId port);
  /// `number` is the index of a port, or one more than all of them have.
  void Watch(int fd, unsigned number);
  void Send(monitor::PortId port, std::span<const std::uint8_t> frame);
  /// Tells the chip and the watch set what has become of the port.
  void UpdateLink(monitor::PortId port);

  chip::RouterChip& chip_;
  chip::PerMacPort<std::unique_ptr<Port>> ports_;
  chip::PerMacPort<int> watched_{{-1, -1, -1}};
  std::optional<PortRecorder> recorder_;
  Descriptor watch_;
  unsigned looks_ = 0;
};

}  // namespace board
