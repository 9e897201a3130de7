#include "machine/ports/network.h"

#include <sys/epoll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

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

/// Looks of the CPU between draws while received frames wait for it. The packet service looks twice
/// for each frame, so a capture brings no more frames than were handled.
constexpr unsigned kLooksBetweenDraws = 2 * Network::kFramesPerPoll;

/// Buffers that captures leave free for ports that cannot wait.
constexpr std::size_t kBuffersLeftFree = 64;

}  // namespace

Network::Network(chip::RouterChip& chip, const NetworkSetup& setup)
    : chip_(chip), watch_(epoll_create1(EPOLL_CLOEXEC)) {
  if (!watch_.Open()) throw PortError(std::string("cannot watch ports: ") + std::strerror(errno));
  if (!setup.capture.empty()) recorder_.emplace(setup.capture, InterfaceNames());
  for (const PortId port : monitor::kMacPorts) {
    ports_[port] = OpenPort(setup.ports[port], setup.options);
    if (!ports_[port]) continue;
    if (!setup.keep_settings) SetUpPort(chip_.registers, monitor::IndexOf(port));
    UpdateLink(port);
  }
  chip_.frames.on_transmit = [this](PortId port, std::span<const std::uint8_t> frame) {
    Send(port, frame);
  };
  chip_.interrupts.before_status = [this] { DrawCaptures(); };
}

void Network::Start() {
  if (recorder_) recorder_->Start();
  for (const auto& port : ports_) {
    if (port) port->Start();
  }
}

void Network::DrawCaptures() {
  // While the monitor works off what has come, looking for more can wait a little.
  if (chip_.frames.cpu.Waiting() && ++looks_ < kLooksBetweenDraws) return;
  looks_ = 0;
  for (const PortId port : monitor::kMacPorts) {
    if (ports_[port] && ports_[port]->Waits()) Take(port);
  }
}

void Network::Poll() {
  const auto is_watched = [](int fd) { return fd >= 0; };
  if (std::none_of(watched_.begin(), watched_.end(), is_watched)) return;
  std::array<epoll_event, monitor::kMacPorts.size() + 1> events;
  const int count = epoll_wait(watch_.Get(), events.data(), static_cast<int>(events.size()), 0);
  unsigned ready = 0;
  for (int i = 0; i < count; ++i) ready |= 1U << events[static_cast<std::size_t>(i)].data.u32;
  for (const PortId port : monitor::kMacPorts) {
    if ((ready >> monitor::IndexOf(port) & 1U) == 0) continue;
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
    if (recorder_) recorder_->Record(monitor::IndexOf(port), Direction::kInbound, *frame);
    chip_.frames.Receive(port, *frame);
  }
}

void Network::Send(PortId port, std::span<const std::uint8_t> frame) {
  if (recorder_) recorder_->Record(monitor::IndexOf(port), Direction::kOutbound, frame);
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
  if (fd >= 0) Watch(fd, monitor::IndexOf(port));
}

void Network::Watch(int fd, unsigned number) {
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.u32 = number;
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
  if (recorder_ && recorder_->Failed()) return true;
  for (const auto& port : ports_) {
    if (port && port->Failed()) return true;
  }
  return false;
}

}  // namespace board
