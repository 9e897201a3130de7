// What surrounds the chip: the far ends of its three ports, connected to the frame engine.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "chip/router_chip.h"
#include "host/descriptor.h"
#include "machine/ports/capture_file.h"
#include "machine/ports/port.h"

namespace board {

/// What the options ask for.
struct NetworkSetup {
  std::array<std::string, 3> ports{"none", "none", "none"};  ///< WAN, LAN, DMZ.
  PortOptions options;
  std::string capture;         ///< File that records every port; empty for none.
  bool keep_settings = false;  ///< The chip's ports have been set, so a boot loader sets nothing.
};

class Network {
 public:
  /// Throws PortError when something cannot be opened.
  Network(chip::RouterChip& chip, const NetworkSetup& setup);

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

  /// Makes WatchedFd readable when `fd` is.
  void Watch(int fd);

  /// True while captures still have frames for a port that is up, or frames wait for the CPU.
  [[nodiscard]] bool Pending() const;

  /// True when something went wrong that the exit status has to report.
  [[nodiscard]] bool Failed() const;

 private:
  void PollWhenDue();
  void Take(unsigned port);
  void Send(unsigned port, std::span<const std::uint8_t> frame);
  /// Passes the state of the port on to the chip and the watch set.
  void UpdateLink(unsigned port);

  chip::RouterChip& chip_;
  std::array<std::unique_ptr<Port>, 3> ports_;
  std::array<int, 3> watched_{-1, -1, -1};
  std::optional<CaptureFile> capture_;
  Descriptor watch_;
  unsigned looks_ = 0;
  bool waited_ = false;
};

}  // namespace board
