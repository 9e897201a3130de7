// The far ends of the chip's Ethernet ports: TAP devices, captures, sockets of test programs.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace board {

/// A frame in place; its source says how long it stays valid.
using Frame = std::span<const std::uint8_t>;

/// A port that cannot be opened: what was asked for and why it failed.
struct PortError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class Port {
 public:
  virtual ~Port() = default;

  /// Replaces what files held before, now that everything asked for could be opened. Throws
  /// std::system_error.
  virtual void Start() {}

  /// The next frame from outside, if one is here now. It stays until the next call.
  virtual std::optional<Frame> Receive() = 0;

  /// Takes a frame that the chip sends.
  virtual void Send(Frame frame) = 0;

  /// Hands on what was sent and not yet passed on. Called before the monitor waits and at the end.
  virtual void Flush() {}

  /// Descriptor that is readable when Receive has something to do; -1 when there is none.
  [[nodiscard]] virtual int WatchedFd() const { return -1; }

  /// True while something is attached.
  [[nodiscard]] virtual bool LinkUp() const { return true; }

  /// True when frames come no faster than they are asked for, so that none need be lost.
  [[nodiscard]] virtual bool Waits() const { return false; }

  /// True while frames are still to come although none is being sent.
  [[nodiscard]] virtual bool Pending() const { return false; }

  /// True when something went wrong that the exit status has to report.
  [[nodiscard]] virtual bool Failed() const { return false; }
};

/// How captures are replayed.
struct PortOptions {
  bool realtime = false;  ///< With the capture's own timing, instead of as fast as it is taken.
};

/// True for the notation of a port option: "none", "tap:NAME", "pcap:[IN][,OUT]", "unix:PATH".
[[nodiscard]] bool IsPort(const std::string& what);

/// The captures that a port option names: what comes in, and what is sent. Empty when there is
/// none.
struct CaptureNames {
  std::string in;
  std::string out;
};
[[nodiscard]] CaptureNames CapturesOf(const std::string& what);

/// Opens what a port option names; null for none. Throws std::runtime_error, a PortError except
/// for captures that cannot be written.
[[nodiscard]] std::unique_ptr<Port> OpenPort(const std::string& what, const PortOptions& options);

// The kinds, by what follows their colon.
[[nodiscard]] std::unique_ptr<Port> OpenTapPort(const std::string& name);
[[nodiscard]] std::unique_ptr<Port> OpenCapturePort(const CaptureNames& names,
                                                    const PortOptions& options);
[[nodiscard]] std::unique_ptr<Port> OpenSocketPort(const std::string& path);

}  // namespace board
