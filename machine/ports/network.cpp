#include "machine/ports/network.h"

#include <sys/epoll.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "mac/port_config.h"
#include "mac/port_config_registers.h"

namespace board {

using monitor::PortId;

namespace {

/// What a boot loader would have made of a port with something connected: up, 100 Mbit/s, full
/// duplex, its PHY on the MII. The chip itself starts with its ports down.
void SetUpPort(chip::RegisterFile& registers, unsigned port) {
  constexpr std::uint8_t kPortUp =
      monitor::kMacLinkUp.Mask() | monitor::kMacSpeed100.Mask() | monitor::kMacFullDuplex.Mask();
  constexpr std::array kInterface{monitor::kInterfaceWan, monitor::kInterfaceLan,
                                  monitor::kInterfaceDmz};
  registers.Set(monitor::kMacControl[port], kPortUp);
  registers.Set(monitor::kInterfaceType, registers.Get(monitor::kInterfaceType) |
                                             kInterface[port].Put(monitor::kInterfaceMii));
}

std::vector<std::string> InterfaceNames() {
  return {monitor::NameOf(PortId::kWan), monitor::NameOf(PortId::kLan),
          monitor::NameOf(PortId::kDmz)};
}

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
  if (!watch_.Open()) throw PortError(std::string("cannot watch ports: ") + std::strerror(errno));
  if (!setup.capture.empty()) capture_.emplace(setup.capture, InterfaceNames());
  for (const PortId port : monitor::kMacPorts) {
    ports_[port] = OpenPort(setup.ports[port], setup.options);
    if (!ports_[port]) continue;
    if (!setup.keep_settings) SetUpPort(chip_.registers, monitor::IndexOf(port));
    UpdateLink(port);
  }
  chip_.frames.on_transmit = [this](PortId port, std::span<const std::uint8_t> frame) {
    Send(port, frame);
  };
  chip_.interrupts.before_status = [this] { PollWhenDue(); };
}

void Network::Start() {
  if (capture_) capture_->Start();
  for (const auto& port : ports_) {
    if (port) port->Start();
  }
}

void Network::PollWhenDue() {
  // While the monitor works off what has come, looking for more can wait a little.
  if (chip_.frames.cpu.Waiting() && ++looks_ < kLooksBetweenPolls) return;
  looks_ = 0;
  // Captures without timing have no descriptor that would have ended the wait.
  if (std::exchange(waited_, false) && !Pending()) return;
  Poll();
}

void Network::Poll() {
  for (const PortId port : monitor::kMacPorts) {
    if (!ports_[port]) continue;
    Take(port);
    UpdateLink(port);
  }
}

void Network::Take(PortId port) {
  const bool waits = ports_[port]->Waits();
  for (unsigned i = 0; i < kFramesPerPoll; ++i) {
    if (waits &&
        (!chip_.frames.ports[port].LinkUp() || chip_.frames.pool.Free() <= kBuffersLeftFree)) {
      return;
    }
    const std::optional<Frame> frame = ports_[port]->Receive();
    if (!frame) return;
    if (capture_) capture_->Record(monitor::IndexOf(port), Direction::kInbound, *frame);
    chip_.frames.Receive(port, *frame);
  }
}

void Network::Send(PortId port, std::span<const std::uint8_t> frame) {
  if (capture_) capture_->Record(monitor::IndexOf(port), Direction::kOutbound, frame);
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

void Network::UpdateLink(PortId port) {
  chip_.mii.SetLink(port, ports_[port]->LinkUp());
  const int fd = ports_[port]->WatchedFd();
  if (fd == watched_[port]) return;
  // One that was closed has left the set by itself.
  if (watched_[port] >= 0) epoll_ctl(watch_.Get(), EPOLL_CTL_DEL, watched_[port], nullptr);
  watched_[port] = fd;
  if (fd < 0) return;
  epoll_event event{};
  event.events = EPOLLIN;
  epoll_ctl(watch_.Get(), EPOLL_CTL_ADD, fd, &event);
}

bool Network::Pending() const {
  if (chip_.frames.cpu.Waiting()) return true;
  for (const PortId port : monitor::kMacPorts) {
    if (ports_[port] && ports_[port]->Pending() && chip_.frames.ports[port].LinkUp()) return true;
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
