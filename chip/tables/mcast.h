// The multicast table of the model and its engine: 64 groups with counters and overflow bits.
#pragma once

#include <array>

#include "chip/engine.h"
#include "core/entry_map.h"

namespace chip {

class McastTable {
 public:
  static constexpr unsigned kSlots = 64;

  struct Entry {
    std::uint32_t ip = 0;
    std::uint8_t ports = 0;  ///< Members: 1 WAN, 2 LAN, 4 DMZ, 8 CPU.
    bool valid = false;
    std::uint32_t counter = 0;

    bool operator==(const Entry&) const = default;
  };

  explicit McastTable(RegisterFile& registers);
  McastTable(const McastTable&) = delete;
  McastTable& operator=(const McastTable&) = delete;

  void Reset();
  void State(StateArchive& archive);

  std::array<Entry, kSlots> entries;
  monitor::EntryMap overflow{};
  Engine engine;

 private:
  /// What has been stored since the last start: the next write applies only that.
  struct Stored {
    bool entry = false;
    bool counter = false;
    bool overflow = false;
  };

  void Claim();
  bool Run(bool write);
  void LoadWindow(const Entry& entry);
  void ApplyWindow(Entry& entry);

  RegisterFile& registers_;
  Stored stored_;
};

}  // namespace chip
