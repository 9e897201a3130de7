// Frames from outside into the packet service, on a model with any faults.
//
// An input is a series of steps; each begins with a byte that says what happens and continues with
// its operands. Without faults, whatever came in, every receive buffer is free again at the end.
#include <cstdlib>
#include <memory>
#include <vector>

#include "console/console_port.h"
#include "core/long_wait.h"
#include "fuzz/input.h"
#include "mac/packet_service.h"
#include "mac/port_config_registers.h"
#include "mac/station_address.h"

namespace monitor {

int ConsoleReadChar() { return -1; }
bool ConsoleEnded() { return false; }
void ConsoleSend(const char* /*text*/, std::size_t /*count*/) {}
void ConsoleFlush() {}
void ConsoleWait(long /*microseconds*/) {}
void ConsoleIdle(long /*microseconds*/) {}
bool WaitInterrupted(const Awaited& /*awaited*/) { return true; }

}  // namespace monitor

namespace {

constexpr std::uint8_t kModes[] = {monitor::kReceiveManual, monitor::kReceiveAuto,
                                   monitor::kReceiveForward};

/// A pass on an engine that hangs takes as many polls as an operator is given before Ctrl-C counts.
constexpr unsigned kMostFaultyPasses = 6;

/// A little more than a buffer takes.
constexpr std::size_t kMostBytes = 2064;

class Story {
 public:
  explicit Story(fuzz::Input input) : input_(input) {
    chip::Attach(*chip_);
    monitor::ReceiveMode = monitor::kReceiveManual;
    monitor::ArpAutoReply = 0;
    BringUp();
  }

  void Run() {
    while (!input_.Empty()) Step();
    if (faulty_) return;
    BringUp();
    monitor::ReceiveMode = monitor::kReceiveAuto;
    while (monitor::PacketService()) continue;
    if (chip_->frames.pool.Free() != all_free_) std::abort();
  }

 private:
  void Step() {
    const std::uint8_t what = input_.Byte();
    const auto port = static_cast<monitor::PortId>(what >> 3 & 3);
    switch (what & 7) {
      case 0:
        return Settings();
      case 1:
        return Fault();
      case 2:
        return Link(port);
      case 3:
        (void)monitor::WriteIpAddr(what >> 3 & 3, input_.Half());
        return;
      case 4:
        return Serve();
      default:
        return Arrive(port);
    }
  }

  void BringUp() {
    for (const monitor::PortId port : monitor::kMacPorts) {
      chip_->registers.Set(monitor::kMacControl[monitor::IndexOf(port)],
                           monitor::kMacLinkUp.Mask());
    }
    chip_->frames.SendQueued();
  }

  void Settings() {
    const std::uint8_t settings = input_.Byte();
    monitor::ReceiveMode = kModes[settings % 3];
    monitor::ArpAutoReply = settings >> 7;
  }

  void Fault() {
    fuzz::SetFault(*chip_, input_);
    faulty_ = true;
  }

  void Link(monitor::PortId port) {
    if (!monitor::IsMacPort(port)) return;
    chip_->registers.Set(monitor::kMacControl[monitor::IndexOf(port)], input_.Byte());
    chip_->frames.SendQueued();
  }

  void Serve() {
    for (unsigned passes = input_.Byte(); passes != 0; --passes) {
      if (faulty_ && ++faulty_passes_ > kMostFaultyPasses) return;
      (void)monitor::PacketService();
    }
  }

  /// A frame of any length; what the input does not fill is zero.
  void Arrive(monitor::PortId port) {
    const std::size_t length = input_.Half() % (kMostBytes);
    const auto head = input_.Bytes(input_.Byte());
    std::vector<std::uint8_t> frame(head.begin(), head.end());
    frame.resize(length);
    (void)chip_->frames.Receive(port, frame);
  }

  fuzz::Input input_;
  std::unique_ptr<chip::RouterChip> chip_ = std::make_unique<chip::RouterChip>();
  std::size_t all_free_ = chip_->frames.pool.Free();
  bool faulty_ = false;
  unsigned faulty_passes_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Story(fuzz::Input(data, size)).Run();
  return 0;
}
