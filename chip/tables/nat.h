// The NAT tables of the model, main and server, with the NAT engine, and the storage of the
// engine's settings.
#pragma once

#include <array>
#include <span>

#include "chip/engine.h"

namespace chip {

class NatTables {
 public:
  static constexpr unsigned kSlots = 256;
  static constexpr unsigned kServerSlots = 16;

  struct Entry {
    std::uint32_t sip = 0;
    std::uint16_t sport = 0;
    std::uint32_t dip = 0;
    std::uint16_t dport = 0;
    bool tcp = false;  ///< TCP, else UDP.
    std::uint32_t nsip = 0;
    std::uint16_t nsport = 0;
    std::uint16_t age = 0;
    bool server = false;  ///< Inside server.
    bool valid = false;

    bool operator==(const Entry&) const = default;
  };

  explicit NatTables(RegisterFile& registers);
  NatTables(const NatTables&) = delete;
  NatTables& operator=(const NatTables&) = delete;

  void Reset();
  void State(StateArchive& archive);

  std::array<Entry, kSlots> main;
  std::array<Entry, kServerSlots> server;
  Engine engine;

 private:
  void ClaimEntry();
  void ClaimValidBits();
  void ClaimSettings();
  bool Run(std::uint8_t command);
  /// The entry that index and table select name; null for a server slot that does not exist.
  Entry* Selected();
  void LoadWindow(const Entry& entry);
  bool WriteWindow(Entry& entry);

  RegisterFile& registers_;
};

}  // namespace chip
