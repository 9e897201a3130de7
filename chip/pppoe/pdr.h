// The PDR table of the model and its engine: 64 entries.
#pragma once

#include <array>

#include "chip/engine.h"

namespace chip {

class PdrTable {
 public:
  static constexpr unsigned kEntries = 64;

  /// An entry as its registers hold it.
  struct Entry {
    std::uint32_t ip = 0;
    std::uint8_t flags = 0;

    bool operator==(const Entry&) const = default;
  };

  explicit PdrTable(RegisterFile& registers);
  PdrTable(const PdrTable&) = delete;
  PdrTable& operator=(const PdrTable&) = delete;

  void Reset();
  void State(StateArchive& archive);

  std::array<Entry, kEntries> entries;
  Engine engine;

 private:
  bool Run(bool write);

  RegisterFile& registers_;
  bool stored_ = false;  ///< The entry's registers have been stored to since the last start.
};

}  // namespace chip
