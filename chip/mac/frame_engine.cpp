#include "chip/mac/frame_engine.h"

#include "chip/mac/frame_limits.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

constexpr EngineBits TransmitBits() {
  EngineBits bits = BitsOf(kTransmitEngine);
  bits.start_clears_done = true;
  return bits;
}

}  // namespace

FrameEngine::FrameEngine(RegisterFile& registers, InterruptController& interrupts,
                         StatCounters& counters)
    : memory(registers),
      cpu(registers, interrupts, memory, pool),
      ports{{Port(registers, PortId::kWan), Port(registers, PortId::kLan),
             Port(registers, PortId::kDmz)}},
      transmit(registers, "tx", kTransmitCommand, TransmitBits(),
               [this](std::uint8_t) {
                 Transmit();
                 return true;
               }),
      registers_(registers),
      statistics_(counters) {
  registers.Define(kTransmitHandle);
  registers.Define(kTransmitControl);
  FrameEngine::Reset();
}

void FrameEngine::Reset() {
  memory.Reset();
  pool.Reset();
  cpu.Reset();
  for (Port& port : ports) port.Reset();
  transmit.Reset();
}

bool FrameEngine::Receive(PortId port, std::span<const std::uint8_t> frame) {
  if (IsMacPort(port) && (!ports[port].LinkUp() || ports[port].LoopedBack())) return false;
  return Arrive(port, frame);
}

bool FrameEngine::Arrive(PortId port, std::span<const std::uint8_t> frame) {
  statistics_.Received(port, frame);
  if (frame.size() > kLongestFrame) return false;
  if (cpu.Offer(port, ClassifyDestination(registers_, port, frame), frame)) return true;
  statistics_.Dropped(port);
  return false;
}

void FrameEngine::Transmit() {
  const std::uint8_t code = kTransmitPort.Get(registers_.Get(kTransmitControl));
  if (!IsPort(code)) {
    registers_.Complain("transmission to no single port");
    return;
  }
  const PortId port = PortOfCode(code);
  const std::uint8_t handle = registers_.Get(kTransmitHandle);
  const std::uint16_t length = memory.HeaderLength(handle);
  const bool good = length != 0 && length <= kLongestFrame;
  if (good && port == PortId::kCpu) {
    Receive(port, memory.Frame(handle, length));
  } else if (good && ports[port].Queue({.handle = handle, .length = length})) {
    pool.AddUse(handle);
    SendQueued(ports[port]);
  } else {
    statistics_.SendFailed(port);
  }
}

void FrameEngine::SendQueued() {
  for (Port& port : ports) SendQueued(port);
}

void FrameEngine::SendQueued(Port& port) {
  while (const std::optional<Transmission> next = port.NextDeparture()) Send(port, *next);
}

void FrameEngine::Send(const Port& port, Transmission transmission) {
  const std::span<const std::uint8_t> frame =
      memory.Frame(transmission.handle, transmission.length);
  statistics_.Sent(port.Id(), frame);
  if (port.LoopedBack()) {
    Arrive(port.Id(), frame);
  } else if (on_transmit) {
    on_transmit(port.Id(), frame);
  }
  pool.EndUse(transmission.handle);
}

void FrameEngine::State(StateArchive& archive) {
  pool.State(archive);
  cpu.ReceivedState(archive);
  archive.Group("queues", [&] {
    for (Port& port : ports) port.State(archive);
  });
  cpu.AcknowledgeState(archive);
  memory.State(archive);
  archive.Group("transmit", [&] { transmit.State(archive); });
  archive.Group("status", [&] { cpu.status.State(archive); });
  archive.Group("release", [&] { cpu.release.State(archive); });
  if (!archive.Loading()) return;
  for (const Port& port : ports) {
    for (const Transmission& transmission : port.Waiting()) pool.AddUse(transmission.handle);
  }
  pool.RequireAll(archive);
}

}  // namespace chip
