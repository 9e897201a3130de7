#include "chip/mac/frame_engine.h"

#include <algorithm>
#include <bit>

#include "chip/hex.h"
#include "core/port_id.h"
#include "mac/frame_registers.h"
#include "mac/port_config_registers.h"
#include "mac/station_address_registers.h"
#include "system/interrupt_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

constexpr unsigned kMostUses = 15;

constexpr MacAddress kBroadcastAddress{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

constexpr EngineBits kTransmitBits{.read_done = kTransmitDone.Mask(),
                                   .write_done = kTransmitDone.Mask(),
                                   .start = kTransmitStart.Mask(),
                                   .write = 0,
                                   .start_clears_done = true};
constexpr EngineBits kStatusBits{.read_done = kStatusDone.Mask(),
                                 .write_done = kStatusDone.Mask(),
                                 .start = kStatusStart.Mask(),
                                 .write = 0};
constexpr EngineBits kReleaseBits{.read_done = kReleaseDone.Mask(),
                                  .write_done = kReleaseDone.Mask(),
                                  .start = kReleaseStart.Mask(),
                                  .write = 0};

/// The destination, as far as the frame goes.
MacAddress Destination(std::span<const std::uint8_t> frame) {
  MacAddress mac{};
  std::copy_n(frame.begin(), std::min(frame.size(), mac.size()), mac.begin());
  return mac;
}

bool IsGroup(const MacAddress& mac) { return (mac[0] & 0x01) != 0; }

}  // namespace

FrameEngine::FrameEngine(RegisterFile& registers, InterruptController& interrupts,
                         StatCounters& counters)
    : memory(registers),
      transmit(registers, "tx", kTransmitCommand, kTransmitBits,
               [this](std::uint8_t) {
                 Transmit();
                 return true;
               }),
      status(registers, "status", kBufferStatus, kStatusBits,
             [this](std::uint8_t) {
               CountUses();
               return true;
             }),
      release(registers, "release", kBufferControl, kReleaseBits,
              [this](std::uint8_t) {
                Release();
                return true;
              }),
      registers_(registers),
      interrupts_(interrupts),
      statistics_(counters) {
  release.on_store = [this](std::uint8_t stored) { TakeAcknowledge(stored); };
  registers.Define(kReceiveHandle, {.read_only = 0xFF});
  registers.Define(kReleaseHandle);
  registers.Define(kTransmitHandle);
  registers.Define(kTransmitControl);
  registers.Define(kStatusHandle);
  Reset();
}

void FrameEngine::Reset() {
  memory.Reset();
  transmit.Reset();
  status.Reset();
  release.Reset();
  buffers_.fill({});
  pool_.clear();
  received_.clear();
  for (auto& queue : queues_) queue.clear();
  acknowledging_ = false;
  for (unsigned handle = kFirstReceiveHandle; handle < kBuffers; ++handle) {
    buffers_[handle].pooled = true;
    pool_.push_back(static_cast<std::uint8_t>(handle));
  }
}

bool FrameEngine::LinkUp(unsigned port) const {
  return kMacLinkUp.Get(registers_.Get(kMacControl[port])) != 0;
}

bool FrameEngine::LoopedBack(unsigned port) const {
  return (registers_.Get(kLoopback) >> 2 * port & 1) != 0;
}

ReceiveReason FrameEngine::Classify(unsigned port, std::span<const std::uint8_t> frame) const {
  const MacAddress mac = Destination(frame);
  if (mac == kBroadcastAddress) return ReceiveReason::kBroadcast;
  if (IsGroup(mac)) return ReceiveReason::kMulticast;
  const bool to_cpu = mac == registers_.Get(kCpuMac);
  const bool to_wan = port == 0 && mac == registers_.Get(kWanMac);
  return to_cpu || to_wan ? ReceiveReason::kStation : ReceiveReason::kOther;
}

bool FrameEngine::Receive(unsigned port, std::span<const std::uint8_t> frame) {
  if (port != kCpuPort && (!LinkUp(port) || LoopedBack(port))) return false;
  return Arrive(port, frame);
}

bool FrameEngine::Arrive(unsigned port, std::span<const std::uint8_t> frame) {
  statistics_.Received(port, frame);
  if (frame.size() > FrameStatistics::kLongestFrame) return false;
  return HandToCpu(port, Classify(port, frame), frame);
}

bool FrameEngine::HandToCpu(unsigned port, ReceiveReason reason,
                            std::span<const std::uint8_t> frame) {
  if (pool_.empty()) {
    statistics_.Dropped(port);
    return false;
  }
  const std::uint8_t handle = pool_.front();
  pool_.pop_front();
  buffers_[handle].pooled = false;
  buffers_[handle].held = true;
  memory.SetHeaderLength(handle, static_cast<std::uint16_t>(frame.size()));
  memory.HeaderByte(handle, kHeaderPort) = static_cast<std::uint8_t>(1U << port);
  memory.HeaderByte(handle, kHeaderReason) = static_cast<std::uint8_t>(reason);
  // A buffer of the pool that is sent to the CPU may come back into itself.
  const auto place = memory.Frame(handle, frame.size());
  if (place.data() != frame.data()) std::copy(frame.begin(), frame.end(), place.begin());
  buffers_[handle].offered = true;
  received_.push_back(handle);
  OfferNext();
  return true;
}

void FrameEngine::OfferNext() {
  registers_.Set(kReceiveHandle, received_.empty() ? 0U : received_.front());
  interrupts_.Hold(kFrameReceived, !received_.empty());
}

void FrameEngine::TakeAcknowledge(std::uint8_t control) {
  const bool high = kReceiveAcknowledge.Get(control) != 0;
  if (high && !acknowledging_) {
    if (received_.empty()) {
      registers_.Complain("receive acknowledged with no frame waiting");
    } else {
      buffers_[received_.front()].offered = false;
      received_.pop_front();
      OfferNext();
    }
  }
  acknowledging_ = high;
}

void FrameEngine::Transmit() {
  const std::uint8_t code = kTransmitPort.Get(registers_.Get(kTransmitControl));
  if (!IsPort(code)) {
    registers_.Complain("transmission to no single port");
    return;
  }
  const auto port = static_cast<unsigned>(std::countr_zero(code));
  const std::uint8_t handle = registers_.Get(kTransmitHandle);
  const std::uint16_t length = memory.HeaderLength(handle);
  const bool good = length != 0 && length <= FrameStatistics::kLongestFrame;
  if (good && port == kCpuPort) {
    Receive(port, memory.Frame(handle, length));
  } else if (good && queues_[port].size() < kLongestQueue) {
    ++buffers_[handle].queued;
    queues_[port].push_back({.handle = handle, .length = length});
    SendQueued(port);
  } else {
    statistics_.SendFailed(port);
  }
}

void FrameEngine::SendQueued() {
  for (unsigned port = 0; port < kMacPorts; ++port) SendQueued(port);
}

void FrameEngine::SendQueued(unsigned port) {
  while (!queues_[port].empty() && LinkUp(port)) {
    const Transmission next = queues_[port].front();
    queues_[port].pop_front();
    Send(port, next);
  }
}

void FrameEngine::Send(unsigned port, Transmission transmission) {
  const std::span<const std::uint8_t> frame =
      memory.Frame(transmission.handle, transmission.length);
  statistics_.Sent(port, frame);
  if (LoopedBack(port)) {
    Arrive(port, frame);
  } else if (on_transmit) {
    on_transmit(port, frame);
  }
  --buffers_[transmission.handle].queued;
  ReturnIfUnused(transmission.handle);
}

void FrameEngine::CountUses() {
  const std::uint8_t handle = registers_.Get(kStatusHandle);
  const Buffer& buffer = buffers_[handle];
  // Software never releases a transmit buffer, so its hold always counts.
  const bool own = handle != 0 && handle < kFirstReceiveHandle;
  const unsigned uses = buffer.queued + (own || buffer.held ? 1 : 0);
  const unsigned other = registers_.Get(kBufferStatus) & ~unsigned{kBufferUses.Mask()};
  registers_.Set(kBufferStatus, other | kBufferUses.Put(std::min(uses, kMostUses)));
}

void FrameEngine::Release() {
  const std::uint8_t handle = registers_.Get(kReleaseHandle);
  if (!buffers_[handle].held) {
    registers_.Complain("release of a buffer that is not handed out");
    return;
  }
  if (buffers_[handle].offered) {
    registers_.Complain("release of a frame that is still offered");
    return;
  }
  buffers_[handle].held = false;
  ReturnIfUnused(handle);
}

void FrameEngine::ReturnIfUnused(std::uint8_t handle) {
  Buffer& buffer = buffers_[handle];
  if (handle < kFirstReceiveHandle || buffer.pooled || buffer.held || buffer.queued != 0) return;
  buffer.pooled = true;
  pool_.push_back(handle);
}

void FrameEngine::State(StateArchive& archive) {
  std::deque<std::uint8_t> held;
  for (unsigned handle = 0; handle < kBuffers; ++handle) {
    if (buffers_[handle].held) held.push_back(static_cast<std::uint8_t>(handle));
  }
  archive.Queue("pool", pool_);
  archive.Queue("held", held);
  archive.Queue("received", received_);
  archive.Group("queues", [&] { QueueState(archive); });
  archive.Flag("acknowledging", acknowledging_);
  memory.State(archive);
  archive.Group("transmit", [&] { transmit.State(archive); });
  archive.Group("status", [&] { status.State(archive); });
  archive.Group("release", [&] { release.State(archive); });
  if (!archive.Loading()) return;
  RebuildBuffers(archive, held);
  OfferNext();
}

void FrameEngine::QueueState(StateArchive& archive) {
  for (unsigned port = 0; port < kMacPorts; ++port) {
    std::deque<Transmission>& queue = queues_[port];
    std::size_t size = queue.size();
    archive.EnterList(kMacPortNames[port], size, kLongestQueue);
    queue.resize(size);
    for (Transmission& transmission : queue) {
      archive.EnterElement();
      archive.Hex("handle", transmission.handle);
      archive.Count("length", transmission.length,
                    static_cast<std::uint16_t>(FrameStatistics::kLongestFrame));
      archive.Require(transmission.length != 0, "length", "empty frames are not sent");
      archive.Leave();
    }
    archive.Leave();
  }
}

void FrameEngine::RebuildBuffers(StateArchive& archive, const std::deque<std::uint8_t>& held) {
  const auto require = [&](bool holds, const char* name, unsigned handle, const char* reason) {
    archive.Require(holds, name, "buffer " + Hex(handle, 2) + " " + reason);
  };
  buffers_.fill({});
  for (const std::uint8_t handle : pool_) {
    require(handle >= kFirstReceiveHandle, "pool", handle, "is no receive buffer");
    require(!buffers_[handle].pooled, "pool", handle, "is there twice");
    buffers_[handle].pooled = true;
  }
  for (const std::uint8_t handle : held) {
    require(handle >= kFirstReceiveHandle, "held", handle, "is no receive buffer");
    require(!buffers_[handle].pooled, "held", handle, "is in the pool too");
    require(!buffers_[handle].held, "held", handle, "is there twice");
    buffers_[handle].held = true;
  }
  for (const std::uint8_t handle : received_) {
    require(buffers_[handle].held, "received", handle, "is not held");
    require(!buffers_[handle].offered, "received", handle, "is there twice");
    buffers_[handle].offered = true;
  }
  for (const auto& queue : queues_) {
    for (const Transmission& transmission : queue) ++buffers_[transmission.handle].queued;
  }
  for (unsigned handle = kFirstReceiveHandle; handle < kBuffers; ++handle) {
    const Buffer& buffer = buffers_[handle];
    require(buffer.pooled || buffer.held || buffer.queued != 0, "pool", handle, "is nowhere");
  }
}

}  // namespace chip
