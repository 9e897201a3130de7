// The ARP table of the model and its engine: 64 bindings with reference bits.
#pragma once

#include <array>

#include "chip/engine.h"
#include "core/entry_map.h"

namespace chip {

class ArpTable {
 public:
  static constexpr unsigned kSlots = 64;

  struct Entry {
    std::uint32_t ip = 0;
    std::array<std::uint8_t, 6> mac{};
    bool valid = false;

    bool operator==(const Entry&) const = default;
  };

  explicit ArpTable(RegisterFile& registers);
  ArpTable(const ArpTable&) = delete;
  ArpTable& operator=(const ArpTable&) = delete;

  void Reset();
  void State(StateArchive& archive);

  std::array<Entry, kSlots> entries;
  monitor::EntryMap reference{};  ///< Which entries have been used.
  Engine engine;

 private:
  /// What has been stored since the last start: the next write applies only that.
  struct Stored {
    bool entry = false;
    bool reference = false;
  };

  void Claim();
  bool Run(bool write);
  void LoadWindow(const Entry& entry);
  void ApplyWindow(Entry& entry);

  RegisterFile& registers_;
  Stored stored_;
};

}  // namespace chip
