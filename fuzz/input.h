// The bytes of one fuzz input, taken from the front.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "chip/router_chip.h"

namespace fuzz {

class Input {
 public:
  Input() = default;
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  [[nodiscard]] bool Empty() const { return rest_.empty(); }

  /// The next byte; 0 after the end.
  std::uint8_t Byte() {
    const auto byte = Bytes(1);
    return byte.empty() ? std::uint8_t{0} : byte.front();
  }

  /// The next two bytes, the more significant one first.
  std::uint16_t Half() {
    const unsigned high = Byte();
    return static_cast<std::uint16_t>(high << 8 | Byte());
  }

  /// The next bytes, fewer at the end.
  std::span<const std::uint8_t> Bytes(std::size_t count) {
    const auto bytes = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(bytes.size());
    return bytes;
  }

 private:
  std::span<const std::uint8_t> rest_;
};

/// Makes one of the fault points fail as the next two bytes say.
inline void SetFault(chip::RouterChip& chip, Input& input) {
  const auto points = chip.FaultPoints();
  chip::FaultPoint* const point = points[input.Byte() % points.size()];
  const std::uint8_t kind = input.Byte();
  point->SetFault({.kind = static_cast<chip::Fault::Kind>(kind % 5), .loads = kind / 5U + 1});
}

}  // namespace fuzz
