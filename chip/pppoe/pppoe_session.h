// The PPPoE session table of the model and its engine: four entries.
#pragma once

#include <array>

#include "chip/engine.h"

namespace chip {

class PppoeSessionTable {
 public:
  static constexpr unsigned kEntries = 4;

  /// An entry as its registers hold it.
  struct Entry {
    std::uint32_t ip = 0;
    std::uint16_t session = 0;
    std::uint16_t vlan = 0;
    std::array<std::uint8_t, 6> server_mac{};
    std::uint8_t flags = 0;  ///< Without the index.

    bool operator==(const Entry&) const = default;
  };

  explicit PppoeSessionTable(RegisterFile& registers);
  PppoeSessionTable(const PppoeSessionTable&) = delete;
  PppoeSessionTable& operator=(const PppoeSessionTable&) = delete;

  void Reset();
  void State(StateArchive& archive);

  std::array<Entry, kEntries> entries;
  Engine engine;

 private:
  bool Run(bool write);
  void LoadWindow(const Entry& entry, std::uint8_t index_bits);
  void ApplyWindow(Entry& entry);

  RegisterFile& registers_;
};

}  // namespace chip
