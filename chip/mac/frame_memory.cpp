#include "chip/mac/frame_memory.h"

#include <algorithm>
#include <cstring>

#include "chip/hex.h"
#include "mac/frame_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

/// Bytes per row of the saved contents.
constexpr std::size_t kRowSize = 32;

/// Memory that holds nothing but zeros is not part of the state.
bool LeavesOutZeros(StateArchive& archive, const std::string& key, std::span<std::uint8_t> bytes) {
  const bool zeros = std::all_of(bytes.begin(), bytes.end(), [](auto byte) { return byte == 0; });
  if (!archive.Omits(key, zeros)) return false;
  std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
  return true;
}

}  // namespace

FrameMemory::FrameMemory(RegisterFile& registers) : registers_(registers), bytes_(kSize) {
  registers.Define(kBufferBase, {.reset = kPowerOnBase});
}

void FrameMemory::Reset() { std::fill(bytes_.begin(), bytes_.end(), std::uint8_t{0}); }

void FrameMemory::Copy(std::uint32_t to, std::uint32_t from, std::uint32_t count) {
  const auto inside = [count](std::uint32_t at) { return at <= kSize && count <= kSize - at; };
  const std::uint32_t to_at = Offset(to);
  const std::uint32_t from_at = Offset(from);
  const bool apart = to_at + count <= from_at || from_at + count <= to_at;
  if (!observer && apart && inside(to_at) && inside(from_at)) {
    // One move has the same effect as the single accesses.
    std::memcpy(bytes_.data() + to_at, bytes_.data() + from_at, count);
    return;
  }
  for (std::uint32_t i = 0; i < count; ++i) Store(to + i, 1, Load(from + i, 1));
}

std::uint16_t FrameMemory::LoadSpecial(std::uint32_t address, unsigned width) {
  const std::uint32_t at = Offset(address);
  std::uint16_t value = width == 1 ? 0xFF : 0xFFFF;
  if (IsProper(at, width)) {
    value = Get(at, width);
  } else {
    Complain(address, width);
  }
  if (observer) observer({.store = false, .width = width, .offset = address, .value = value});
  return value;
}

void FrameMemory::StoreSpecial(std::uint32_t address, unsigned width, std::uint16_t value) {
  if (observer) observer({.store = true, .width = width, .offset = address, .value = value});
  const std::uint32_t at = Offset(address);
  if (IsProper(at, width)) {
    Set(at, width, value);
  } else {
    Complain(address, width);
  }
}

void FrameMemory::Complain(std::uint32_t address, unsigned width) {
  const bool aligned = Offset(address) % width == 0;
  registers_.Complain(std::string(aligned ? "memory access outside the frame buffers at "
                                          : "memory access not aligned at ") +
                      Hex(address, 8));
}

std::uint8_t& FrameMemory::HeaderByte(unsigned handle, std::uint32_t offset) {
  return bytes_[handle * kBufferSize + offset];
}

std::uint16_t FrameMemory::HeaderLength(unsigned handle) const {
  return Get(handle * kBufferSize + kHeaderLength, sizeof(std::uint16_t));
}

void FrameMemory::SetHeaderLength(unsigned handle, std::uint16_t length) {
  Set(handle * kBufferSize + kHeaderLength, sizeof(length), length);
}

std::span<std::uint8_t> FrameMemory::Frame(unsigned handle, std::size_t length) {
  return std::span(bytes_).subspan(handle * kBufferSize + kBufferHeaderSize, length);
}

void FrameMemory::State(StateArchive& archive) {
  archive.Group("memory", [&] {
    const auto all = std::span(bytes_);
    for (std::size_t at = 0; at < kSize; at += kBufferSize) {
      const auto buffer = all.subspan(at, std::min<std::size_t>(kBufferSize, kSize - at));
      const std::string key = Hex(at / kBufferSize, 2);
      if (LeavesOutZeros(archive, key, buffer)) continue;
      archive.Group(key, [&] {
        for (std::size_t row = 0; row < buffer.size(); row += kRowSize) {
          const auto bytes = buffer.subspan(row, kRowSize);
          const std::string row_key = Hex(row, 3);
          if (!LeavesOutZeros(archive, row_key, bytes)) archive.Bytes(row_key, bytes);
        }
      });
    }
  });
}

}  // namespace chip
