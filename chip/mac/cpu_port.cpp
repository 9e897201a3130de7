#include "chip/mac/cpu_port.h"

#include <algorithm>

#include "system/interrupt_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

constexpr unsigned kMostUses = 15;

}  // namespace

CpuPort::CpuPort(RegisterFile& registers, InterruptController& interrupts, FrameMemory& memory,
                 BufferPool& pool)
    : status(registers, "status", kBufferStatus, BitsOf(kStatusEngine),
             [this](std::uint8_t) {
               CountUses();
               return true;
             }),
      release(registers, "release", kBufferControl, BitsOf(kReleaseEngine),
              [this](std::uint8_t) {
                Release();
                return true;
              }),
      registers_(registers),
      interrupts_(interrupts),
      memory_(memory),
      pool_(pool) {
  release.on_store = [this](std::uint8_t stored) { TakeAcknowledge(stored); };
  registers.Define(kReceiveHandle, {.read_only = 0xFF});
  registers.Define(kReleaseHandle);
  registers.Define(kStatusHandle);
}

void CpuPort::Reset() {
  status.Reset();
  release.Reset();
  received_.clear();
  in_received_.reset();
  acknowledging_ = false;
}

bool CpuPort::Offer(PortId port, ReceiveReason reason, std::span<const std::uint8_t> frame) {
  const std::optional<std::uint8_t> buffer = pool_.Take();
  if (!buffer) return false;
  const std::uint8_t handle = *buffer;
  pool_.Hold(handle);
  memory_.SetHeaderLength(handle, static_cast<std::uint16_t>(frame.size()));
  memory_.HeaderByte(handle, kHeaderPort) = CodeOf(port);
  memory_.HeaderByte(handle, kHeaderReason) = static_cast<std::uint8_t>(reason);
  // A pool buffer that is sent to the CPU may be received into itself.
  const auto place = memory_.Frame(handle, frame.size());
  if (place.data() != frame.data()) std::copy(frame.begin(), frame.end(), place.begin());
  in_received_.set(handle);
  received_.push_back(handle);
  OfferNext();
  return true;
}

void CpuPort::OfferNext() {
  registers_.Set(kReceiveHandle, received_.empty() ? 0U : received_.front());
  interrupts_.Hold(kFrameReceived, !received_.empty());
}

void CpuPort::TakeAcknowledge(std::uint8_t control) {
  const bool high = kReceiveAcknowledge.Get(control) != 0;
  if (high && !acknowledging_) {
    if (received_.empty()) {
      registers_.Complain("receive acknowledged with no frame waiting");
    } else {
      in_received_.reset(received_.front());
      received_.pop_front();
      OfferNext();
    }
  }
  acknowledging_ = high;
}

void CpuPort::CountUses() {
  const unsigned uses = pool_.Uses(registers_.Get(kStatusHandle));
  const unsigned other = registers_.Get(kBufferStatus) & ~unsigned{kBufferUses.Mask()};
  registers_.Set(kBufferStatus, other | kBufferUses.Put(std::min(uses, kMostUses)));
}

void CpuPort::Release() {
  const std::uint8_t handle = registers_.Get(kReleaseHandle);
  if (!pool_.Held(handle)) {
    registers_.Complain("release of a buffer that is not handed out");
    return;
  }
  if (in_received_[handle]) {
    registers_.Complain("release of a frame that is still offered");
    return;
  }
  pool_.GiveBack(handle);
}

void CpuPort::ReceivedState(StateArchive& archive) {
  archive.Queue("received", received_);
  if (!archive.Loading()) return;
  in_received_.reset();
  for (const std::uint8_t handle : received_) {
    RequireOfBuffer(archive, pool_.Held(handle), "received", handle, "is not held");
    RequireOfBuffer(archive, !in_received_[handle], "received", handle, "is listed twice");
    in_received_.set(handle);
  }
  OfferNext();
}

void CpuPort::AcknowledgeState(StateArchive& archive) {
  archive.Flag("acknowledging", acknowledging_);
}

}  // namespace chip
