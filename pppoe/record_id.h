// Session and VLAN IDs as stored in the records of the pst and pxt tables: two bytes.
//
// Reads and writes of these tables disagree about them. A read leaves an ID as a number of the
// chip's little-endian processor, low byte first. A write sends the two bytes as they are stored,
// and the register's first byte is its high one. So a command that fills a record high byte first
// writes what was typed, while a record that was read and is written again swaps the bytes of its
// IDs in the hardware. Storing bytes makes this the same on hosts of either byte order.
#pragma once

#include <array>
#include <cstdint>

namespace monitor {

/// An ID in a record: low byte first after a read, high byte first for a write.
using RecordId = std::array<std::uint8_t, 2>;

/// The ID as a read leaves it, and back to its number.
[[nodiscard]] constexpr RecordId NumberToId(std::uint16_t number) {
  return {static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(number >> 8)};
}
[[nodiscard]] constexpr std::uint16_t IdToNumber(const RecordId& id) {
  return static_cast<std::uint16_t>(id[1] << 8 | id[0]);
}

/// The register value of a write.
[[nodiscard]] constexpr std::uint16_t IdToRegister(const RecordId& id) {
  return static_cast<std::uint16_t>(id[0] << 8 | id[1]);
}

/// Turns an ID as a read leaves it into one for a write.
[[nodiscard]] constexpr RecordId SwapId(const RecordId& id) { return {id[1], id[0]}; }

}  // namespace monitor
