#include "machine/ports/network.h"

#include <sys/epoll.h>

#include <utility>

#include "mac/port_config_registers.h"

namespace board {
namespace {

/// How a boot loader would have configured a connected port: up, 100 Mbit/s, full duplex. The chip
/// itself starts with its ports down.
constexpr std::uint8_t kPortUp =
    monitor::kMacLinkUp.Mask() | monitor::kMacSpeed100.Mask() | monitor::kMacFullDuplex.Mask();

const std::vector<std::string> kInterfaceNames{chip::kMacPortNames.begin(),
                                               chip::kMacPortNames.end()};

/// Most frames that one port brings in one poll, so that none starves the others.
constexpr unsigned kFramesPerPoll = 64;

/// Looks at the interrupt status between polls while received frames wait for the CPU. The packet
/// service looks twice for each frame, so a port brings no more frames than were handled, and none
/// has to be dropped only because it was fetched early.
constexpr unsigned kLooksBetweenPolls = 2 * kFramesPerPoll;

/// Buffers that captures leave free for ports that cannot wait.
constexpr std::size_t kBuffersLeftFree = 64;

}  // namespace

Network::Network(chip::RouterChip& chip, const NetworkSetup& setup)
    : chip_(chip), watch_(epoll_create1(EPOLL_CLOEXEC)) {
  if (!setup.capture.empty()) capture_.emplace(setup.capture, kInterfaceNames);
  for (unsigned port = 0; port < ports_.size(); ++port) {
    ports_[port] = OpenPort(setup.ports[port], setup.options);
    if (!ports_[port]) continue;
    if (!setup.keep_settings) chip_.registers.Set(monitor::kMacControl[port], kPortUp);
    UpdateLink(port);
  }
  chip_.frames.on_transmit = [this](unsigned port, std::span<const std::uint8_t> frame) {
    Send(port, frame);
  };
  chip_.interrupts.before_status = [this] { PollWhenDue(); };
}

void Network::PollWhenDue() {
  // While the monitor handles what has come, looking for more can wait a little.
  if (chip_.frames.Waiting() && ++looks_ < kLooksBetweenPolls) return;
  looks_ = 0;
  // Captures without timing have no descriptor that would have ended the wait.
  if (std::exchange(waited_, false) && !Pending()) return;
  Poll();
}

void Network::Poll() {
  for (unsigned port = 0; port < ports_.size(); ++port) {
    if (!ports_[port]) continue;
    Take(port);
    UpdateLink(port);
  }
}

void Network::Take(unsigned port) {
  const bool waits = ports_[port]->Waits();
  for (unsigned i = 0; i < kFramesPerPoll; ++i) {
    if (waits && (!chip_.frames.LinkUp(port) || chip_.frames.FreeBuffers() <= kBuffersLeftFree)) {
      return;
    }
    const std::optional<Frame> frame = ports_[port]->Receive();
    if (!frame) return;
    if (capture_) capture_->Record(port, Direction::kInbound, *frame);
    chip_.frames.Receive(port, *frame);
  }
}

void Network::Send(unsigned port, std::span<const std::uint8_t> frame) {
  if (capture_) capture_->Record(port, Direction::kOutbound, frame);
  if (!ports_[port]) return;
  ports_[port]->Send(frame);
  // What was closed leaves the set before its number comes to mean something else.
  UpdateLink(port);
}

void Network::Flush() {
  for (const auto& port : ports_) {
    if (port) port->Flush();
  }
}

void Network::UpdateLink(unsigned port) {
  chip_.mii.SetLink(static_cast<std::uint8_t>(1U << port), ports_[port]->LinkUp());
  const int fd = ports_[port]->WatchedFd();
  if (fd == watched_[port]) return;
  // One that was closed has left the set by itself.
  if (watched_[port] >= 0) epoll_ctl(watch_.Get(), EPOLL_CTL_DEL, watched_[port], nullptr);
  watched_[port] = fd;
  if (fd >= 0) Watch(fd);
}

void Network::Watch(int fd) {
  epoll_event event{};
  event.events = EPOLLIN;
  epoll_ctl(watch_.Get(), EPOLL_CTL_ADD, fd, &event);
}

bool Network::Pending() const {
  if (chip_.frames.Waiting()) return true;
  for (unsigned port = 0; port < ports_.size(); ++port) {
    if (ports_[port] && ports_[port]->Pending() && chip_.frames.LinkUp(port)) return true;
  }
  return false;
}

bool Network::Failed() const {
  if (capture_ && capture_->Failed()) return true;
  for (const auto& port : ports_) {
    if (port && port->Failed()) return true;
  }
  return false;
}

}  // namespace board
