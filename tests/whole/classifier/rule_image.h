// What the classifier's registers should hold for a typed rule, and what the monitor should make
// of them, derived from the offsets and bits of the chip alone.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// The keywords of a line, each with the arguments of its last occurrence, as numbers: addresses
/// with the first part most significant, "high" as 1, interfaces as a set from WAN (1) to CPU (8).
using SaidKeywords = std::map<std::string, std::vector<std::uint64_t>>;

/// The bytes of the registers from 0x700 to 0x757.
class RuleImage {
 public:
  /// The big-endian number of `width` bytes at `offset` (0x700 on).
  [[nodiscard]] std::uint64_t Get(unsigned offset, unsigned width) const;

  /// Stores what a rule write stores. Everything else stays.
  void Write(unsigned next, std::uint32_t counter, const SaidKeywords& said);

  /// What the monitor prints of the rule. A read does not know about the copy to the CPU.
  [[nodiscard]] std::string Text(unsigned index, bool copy_to_cpu) const;

 private:
  void Put(unsigned offset, unsigned width, std::uint64_t value);

  std::array<std::uint8_t, 0x58> bytes_{};
};
