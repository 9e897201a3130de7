// The route table of the model and its engine: 64 slots with counters and overflow bits.
#pragma once

#include <array>

#include "chip/engine.h"
#include "core/entry_map.h"

namespace chip {

class L3RouteTable {
 public:
  static constexpr unsigned kSlots = 64;

  /// A slot as its registers hold it.
  struct Entry {
    std::uint32_t ip = 0;
    std::uint8_t mask = 0;
    std::uint8_t encapsulation = 0;
    std::uint32_t next_hop = 0;
    std::uint8_t flags = 0;
    std::uint32_t counter = 0;

    bool operator==(const Entry&) const = default;
  };

  explicit L3RouteTable(RegisterFile& registers);
  L3RouteTable(const L3RouteTable&) = delete;
  L3RouteTable& operator=(const L3RouteTable&) = delete;

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
