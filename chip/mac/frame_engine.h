// The path of a frame through the model: from a port to the CPU, and from a buffer that the CPU
// sends to a port.
#pragma once

#include <functional>
#include <span>

#include "chip/block.h"
#include "chip/engine.h"
#include "chip/mac/buffer_pool.h"
#include "chip/mac/cpu_port.h"
#include "chip/mac/frame_memory.h"
#include "chip/mac/frame_statistics.h"
#include "chip/mac/port.h"
#include "chip/per_mac_port.h"
#include "chip/system/interrupt.h"

namespace chip {

class FrameEngine : public Block {
 public:
  FrameEngine(RegisterFile& registers, InterruptController& interrupts, StatCounters& counters);
  FrameEngine(const FrameEngine&) = delete;
  FrameEngine& operator=(const FrameEngine&) = delete;

  [[nodiscard]] const char* Name() const override { return "frames"; }
  void Reset() override;
  void State(StateArchive& archive) override;
  [[nodiscard]] std::vector<FaultPoint*> FaultPoints() override {
    return {&transmit, &cpu.status, &cpu.release};
  }

  /// A frame, without its FCS, arrives at a port from outside (at the CPU port: from the CPU
  /// itself). False when it is lost: the port is down or looped back, the frame too long, no buffer
  /// free.
  bool Receive(monitor::PortId port, std::span<const std::uint8_t> frame);

  /// Sends what waits for ports that are up. To be called when one has come up.
  void SendQueued();

  /// A frame leaves a port. Empty when nothing is attached.
  std::function<void(monitor::PortId port, std::span<const std::uint8_t> frame)> on_transmit;

  FrameMemory memory;
  BufferPool pool;
  CpuPort cpu;
  PerMacPort<Port> ports;
  Engine transmit;  ///< "tx"

 private:
  bool Arrive(monitor::PortId port, std::span<const std::uint8_t> frame);
  void Transmit();
  void SendQueued(Port& port);
  void Send(const Port& port, Transmission transmission);

  RegisterFile& registers_;
  FrameStatistics statistics_;
};

}  // namespace chip
