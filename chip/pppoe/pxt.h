// The PXT table of the model and its engine: four entries.
#pragma once

#include <array>

#include "chip/engine.h"

namespace chip {

class PxtTable {
 public:
  static constexpr unsigned kEntries = 4;

  /// An entry as its registers hold it.
  struct Entry {
    std::array<std::uint8_t, 6> internal_mac{};
    std::array<std::uint8_t, 6> external_mac{};
    std::uint16_t internal_session = 0;
    std::uint16_t external_session = 0;
    std::uint16_t internal_vlan = 0;
    std::uint16_t external_vlan = 0;
    std::uint8_t switches = 0;
    std::uint8_t flags = 0;  ///< Without the index.

    bool operator==(const Entry&) const = default;
  };

  explicit PxtTable(RegisterFile& registers);
  PxtTable(const PxtTable&) = delete;
  PxtTable& operator=(const PxtTable&) = delete;

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
