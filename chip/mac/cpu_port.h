// The CPU's side of the frames that it receives: the one that is offered, its acknowledgement, the
// uses of a buffer and its release.
#pragma once

#include <bitset>
#include <deque>
#include <span>

#include "chip/engine.h"
#include "chip/mac/buffer_pool.h"
#include "chip/mac/destination_class.h"
#include "chip/mac/frame_memory.h"
#include "chip/system/interrupt.h"

namespace chip {

class CpuPort {
 public:
  CpuPort(RegisterFile& registers, InterruptController& interrupts, FrameMemory& memory,
          BufferPool& pool);
  CpuPort(const CpuPort&) = delete;
  CpuPort& operator=(const CpuPort&) = delete;

  void Reset();

  // The parts of the state, in the order in which a state file lists them; the engines follow the
  // memory. The pool comes before.
  void ReceivedState(StateArchive& archive);
  void AcknowledgeState(StateArchive& archive);

  /// Puts a frame that `port` received into a buffer and offers it to the CPU after those that
  /// wait. False when no buffer is free.
  [[nodiscard]] bool Offer(monitor::PortId port, ReceiveReason reason,
                           std::span<const std::uint8_t> frame);

  /// True while received frames wait to be acknowledged.
  [[nodiscard]] bool Waiting() const { return !received_.empty(); }

  Engine status;   ///< "status"
  Engine release;  ///< "release"

 private:
  void OfferNext();
  void TakeAcknowledge(std::uint8_t control);
  void CountUses();
  void Release();

  RegisterFile& registers_;
  InterruptController& interrupts_;
  FrameMemory& memory_;
  BufferPool& pool_;
  std::deque<std::uint8_t> received_;           ///< Not yet acknowledged, the offered one first.
  std::bitset<monitor::kBuffers> in_received_;  ///< By handle.
  bool acknowledging_ = false;
};

}  // namespace chip
