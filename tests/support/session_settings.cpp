// What "@set" reaches: counters, maps and bits that the monitor cannot set by itself.
#include <cctype>
#include <map>

#include "mac/stat_counters_registers.h"
#include "support/frame_directives.h"
#include "support/session_words.h"

namespace {

template <typename Table>
void SetCounted(Table& table, Words& words) {
  const std::string what = TakeWord(words);
  const std::uint32_t index = TakeHex(words) % Table::kSlots;
  if (what == "counter") {
    table.Mark(index).counter = TakeHex(words);
  } else if (what == "overflow") {
    table.SetMapBit(index);
  } else {
    throw SessionError("the table has no " + what);
  }
}

void SetArp(SessionState& state, Words& words) {
  const std::string what = TakeWord(words);
  if (what != "reference") throw SessionError("arp has no " + what);
  state.chip.arp.SetMapBit(TakeHex(words) % chip::ArpTable::kSlots);
}

void SetNat(SessionState& state, Words& words) {
  const std::string what = TakeWord(words);
  if (what != "fill") throw SessionError("nat has no " + what);
  constexpr unsigned kSlots = decltype(state.chip.nat.main)::kSlots;
  const std::uint32_t first = TakeHex(words) % kSlots;
  const std::uint32_t last = TakeHex(words) % kSlots;
  for (std::uint32_t slot = first; slot <= last; ++slot) {
    const auto port = static_cast<std::uint16_t>(slot);
    state.chip.nat.main.Change(slot) = {.sip = slot,
                                        .sport = port,
                                        .dip = slot,
                                        .dport = port,
                                        .tcp = true,
                                        .nsip = slot,
                                        .nsport = port,
                                        .age = port,
                                        .server = false,
                                        .valid = true};
  }
}

void SetClassifier(SessionState& state, Words& words) {
  const std::string what = TakeWord(words);
  const std::uint32_t index = TakeHex(words) % chip::Classifier::kSlots;
  if (what == "counter") {
    state.chip.classifier.Mark(index).counter = TakeHex(words);
  } else if (what == "overflow") {
    state.chip.classifier.SetMapBit(index);
  } else {
    throw SessionError("cls has no " + what);
  }
}

void SetStatCounters(SessionState& state, Words& words) {
  const monitor::PortId port = TakePort(words);
  std::string name = TakeWord(words);
  if (name == "overflow") {
    state.chip.stat_counters.overflow[port] = TakeHex(words);
    return;
  }
  for (char& letter : name) letter = static_cast<char>(std::toupper(letter));
  for (std::size_t i = 0; i < monitor::kStatCounterRows.size(); ++i) {
    if (monitor::kStatCounterRows[i].name != name) continue;
    state.chip.stat_counters.counters[port][i] = TakeHex(words);
    return;
  }
  throw SessionError("sc has no " + name);
}

void SetPst(SessionState& state, Words& words) {
  const std::string what = TakeWord(words);
  if (what != "used") throw SessionError("pst has no " + what);
  state.chip.pst.Mark(TakeHex(words) % chip::PppoeSessionTable::kSlots).used = true;
}

}  // namespace

void ApplySetting(SessionState& state, Words& words) {
  static const std::map<std::string, void (*)(SessionState&, Words&)> kBlocks{
      {"l3", [](SessionState& s, Words& w) { SetCounted(s.chip.l3, w); }},
      {"mcast", [](SessionState& s, Words& w) { SetCounted(s.chip.mcast, w); }},
      {"arp", SetArp},
      {"nat", SetNat},
      {"cls", SetClassifier},
      {"sc", SetStatCounters},
      {"pst", SetPst},
      {"buffer", SetBuffer},
      {"memory", SetMemory},
  };
  const std::string block = TakeWord(words);
  const auto found = kBlocks.find(block);
  if (found == kBlocks.end()) throw SessionError("nothing to set in " + block);
  found->second(state, words);
}
