// The model's frame buffer memory: 256 buffers at the bus address that the buffer base register
// gives. The contents move with the register.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "chip/register_file.h"
#include "mac/frame_registers.h"

namespace chip {

class FrameMemory {
 public:
  /// Buffer base at power-on: the buffers lie at 0x01000000.
  static constexpr std::uint16_t kPowerOnBase = 0x0100;

  explicit FrameMemory(RegisterFile& registers);
  FrameMemory(const FrameMemory&) = delete;
  FrameMemory& operator=(const FrameMemory&) = delete;

  void Reset();
  void State(StateArchive& archive);

  /// A bus load or store of 1 or 2 bytes. Halfwords are little-endian on every host, as the
  /// processor of the board is. An access outside the buffers is complained about and reads as all
  /// ones.
  [[nodiscard]] std::uint16_t Load(std::uint32_t address, unsigned width) {
    const std::uint32_t at = Offset(address);
    return observer || !IsProper(at, width) ? LoadSpecial(address, width) : Get(at, width);
  }
  void Store(std::uint32_t address, unsigned width, std::uint16_t value) {
    const std::uint32_t at = Offset(address);
    if (observer || !IsProper(at, width)) {
      StoreSpecial(address, width, value);
    } else {
      Set(at, width, value);
    }
  }

  /// A byte load at `from` and a byte store at `to`, `count` times, addresses increasing.
  void Copy(std::uint32_t to, std::uint32_t from, std::uint32_t count);

  // The contents, bypassing the bus.
  [[nodiscard]] std::uint8_t& HeaderByte(unsigned handle, std::uint32_t offset);
  [[nodiscard]] std::uint16_t HeaderLength(unsigned handle) const;
  void SetHeaderLength(unsigned handle, std::uint16_t length);
  /// Where the handle's frame lies. `length` is at most 2048.
  [[nodiscard]] std::span<std::uint8_t> Frame(unsigned handle, std::size_t length);

  /// False: the memory cannot be mapped, as on a board whose memory device refuses it.
  bool mappable = true;

  /// Called after each load and before each store takes effect; empty without an observer.
  std::function<void(const Access&)> observer;

 private:
  /// A frame begins after its buffer's header, so the longest extends past the last buffer.
  static constexpr std::size_t kSize =
      monitor::kBuffers * monitor::kBufferSize + monitor::kBufferHeaderSize;

  // Inlined, as every access goes through these and its width is a constant.
  [[nodiscard]] std::uint32_t Offset(std::uint32_t address) const {
    return address - (std::uint32_t{registers_.Get(monitor::kBufferBase)} << 16);
  }
  /// The access lies in the buffers and is aligned.
  [[nodiscard]] static bool IsProper(std::uint32_t at, unsigned width) {
    return (at & (width - 1)) == 0 && at <= kSize - width;
  }
  [[nodiscard]] std::uint16_t Get(std::uint32_t at, unsigned width) const {
    if (width == 1) return bytes_[at];
    return static_cast<std::uint16_t>(bytes_[at + 1] << 8 | bytes_[at]);
  }
  void Set(std::uint32_t at, unsigned width, std::uint16_t value) {
    bytes_[at] = static_cast<std::uint8_t>(value);
    if (width == 2) bytes_[at + 1] = static_cast<std::uint8_t>(value >> 8);
  }

  // An access that is watched or not proper.
  [[nodiscard]] std::uint16_t LoadSpecial(std::uint32_t address, unsigned width);
  void StoreSpecial(std::uint32_t address, unsigned width, std::uint16_t value);
  void Complain(std::uint32_t address, unsigned width);

  RegisterFile& registers_;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace chip
