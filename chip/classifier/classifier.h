// The packet classifier of the model: its engine, 128 rules with counters and overflow bits, and
// the chain head.
#pragma once

#include <array>

#include "chip/engine.h"

namespace chip {

class Classifier {
 public:
  static constexpr unsigned kRules = 128;

  /// Bytes of the overflow map. Byte 0 holds rules 0x7F (bit 7) to 0x78; rules below 0x38 have
  /// no bit.
  static constexpr unsigned kOverflowBytes = 9;

  /// A rule as its registers hold it.
  struct Entry {
    std::uint16_t ether_type = 0;
    std::uint8_t protocol = 0;
    std::uint8_t ds = 0;
    std::uint32_t sip = 0;
    std::uint8_t sip_mask = 0;
    std::uint32_t dip = 0;
    std::uint8_t dip_mask = 0;
    std::uint16_t sport = 0;
    std::uint16_t dport = 0;
    std::uint8_t flags1 = 0;
    std::uint8_t flags2 = 0;
    std::uint32_t control = 0;
    std::array<std::uint8_t, 6> smac{};
    std::array<std::uint8_t, 6> dmac{};
    std::uint16_t vlan = 0;
    std::uint8_t sp_mask = 0;
    std::uint8_t dp_mask = 0;
    std::uint8_t flags3 = 0;
    std::uint8_t extended_valid = 0;
    std::uint16_t desired_vlan = 0;
    std::uint32_t counter = 0;

    bool operator==(const Entry&) const = default;
  };

  explicit Classifier(RegisterFile& registers);
  Classifier(const Classifier&) = delete;
  Classifier& operator=(const Classifier&) = delete;

  void Reset();
  void State(StateArchive& archive);

  /// Raises the rule's overflow bit, if it has one.
  void SetOverflow(unsigned index);

  std::array<Entry, kRules> entries;
  std::array<std::uint8_t, kOverflowBytes> overflow{};
  Engine engine;

 private:
  /// What has been stored since the last start: the next write applies only that.
  struct Stored {
    bool rule = false;
    bool counter = false;
    bool overflow = false;
  };

  void Claim();
  bool Run(std::uint8_t command);
  void LoadWindow(const Entry& entry);
  void ApplyRule(Entry& entry);
  void ApplyOverflow();

  RegisterFile& registers_;
  Stored stored_;
};

}  // namespace chip
