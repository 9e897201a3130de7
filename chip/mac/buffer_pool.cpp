#include "chip/mac/buffer_pool.h"

#include "chip/hex.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

void BufferPool::Reset() {
  buffers_.fill({});
  pool_.clear();
  for (unsigned handle = kFirstReceiveHandle; handle < kBuffers; ++handle) {
    buffers_[handle].pooled = true;
    pool_.push_back(static_cast<std::uint8_t>(handle));
  }
}

std::optional<std::uint8_t> BufferPool::Take() {
  if (pool_.empty()) return {};
  const std::uint8_t handle = pool_.front();
  pool_.pop_front();
  buffers_[handle].pooled = false;
  return handle;
}

void BufferPool::GiveBack(std::uint8_t handle) {
  buffers_[handle].held = false;
  ReturnIfUnused(handle);
}

void BufferPool::EndUse(std::uint8_t handle) {
  --buffers_[handle].uses;
  ReturnIfUnused(handle);
}

unsigned BufferPool::Uses(std::uint8_t handle) const {
  const Buffer& buffer = buffers_[handle];
  // Software never gives a transmit buffer back, so its hold always counts.
  const bool own = handle != 0 && handle < kFirstReceiveHandle;
  return buffer.uses + (own || buffer.held ? 1 : 0);
}

void BufferPool::ReturnIfUnused(std::uint8_t handle) {
  Buffer& buffer = buffers_[handle];
  if (handle < kFirstReceiveHandle || buffer.pooled || buffer.held || buffer.uses != 0) return;
  buffer.pooled = true;
  pool_.push_back(handle);
}

void BufferPool::State(StateArchive& archive) {
  std::deque<std::uint8_t> held;
  for (unsigned handle = 0; handle < kBuffers; ++handle) {
    if (buffers_[handle].held) held.push_back(static_cast<std::uint8_t>(handle));
  }
  archive.Queue("pool", pool_);
  archive.Queue("held", held);
  if (archive.Loading()) Rebuild(archive, held);
}

void BufferPool::Rebuild(StateArchive& archive, const std::deque<std::uint8_t>& held) {
  const auto require = [&](bool holds, const char* name, unsigned handle, const char* reason) {
    RequireOfBuffer(archive, holds, name, handle, reason);
  };
  buffers_.fill({});
  for (const std::uint8_t handle : pool_) {
    require(handle >= kFirstReceiveHandle, "pool", handle, "is not a receive buffer");
    require(!buffers_[handle].pooled, "pool", handle, "is listed twice");
    buffers_[handle].pooled = true;
  }
  for (const std::uint8_t handle : held) {
    require(handle >= kFirstReceiveHandle, "held", handle, "is not a receive buffer");
    require(!buffers_[handle].pooled, "held", handle, "is in the pool too");
    require(!buffers_[handle].held, "held", handle, "is listed twice");
    buffers_[handle].held = true;
  }
}

void BufferPool::RequireAll(StateArchive& archive) const {
  for (unsigned handle = kFirstReceiveHandle; handle < kBuffers; ++handle) {
    const Buffer& buffer = buffers_[handle];
    const bool known = buffer.pooled || buffer.held || buffer.uses != 0;
    RequireOfBuffer(archive, known, "pool", handle, "is missing");
  }
}

void RequireOfBuffer(StateArchive& archive, bool holds, const char* name, unsigned handle,
                     const char* reason) {
  archive.Require(holds, name, "buffer " + Hex(handle, 2) + " " + reason);
}

}  // namespace chip
