#include "chip/mac/stat_counters.h"

#include "mac/stat_counters_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

static_assert(StatCounters::kCounters == kStatCounterRows.size());

namespace {

/// The highest value of a counter.
std::uint32_t Most(unsigned counter) {
  return static_cast<std::uint32_t>((std::uint64_t{1} << kStatCounterRows[counter].width) - 1);
}

}  // namespace

StatCounters::StatCounters(RegisterFile& registers)
    : engine(registers, "sc", kStatCommand, kTableEngineBits,
             [this](std::uint8_t command) { return Run(kEngineWrite.Get(command) != 0); }),
      registers_(registers) {
  engine.on_end = [this] { stored_ = {}; };
  registers.Define(kStatOverflow,
                   {.after_store = [this](std::uint32_t) { stored_.overflow = true; }});
  registers.Define(kStatWordB, {.after_store = [this](std::uint32_t) { stored_.word_b = true; }});
  registers.Define(kStatWordA, {.after_store = [this](std::uint32_t) { stored_.word_a = true; }});
  registers.Define(kStatSelector);
}

void StatCounters::Reset() {
  for (auto& port : counters) port.fill(0);
  overflow.fill(0);
  stored_ = {};
  engine.Reset();
}

void StatCounters::Count(PortId port, unsigned counter, std::uint32_t amount) {
  const std::uint64_t most = Most(counter);
  std::uint32_t& count = counters[port][counter];
  const std::uint64_t sum = std::uint64_t{count} + amount;
  count = static_cast<std::uint32_t>(sum & most);
  if (sum > most) overflow[port] |= std::uint32_t{1} << counter;
}

bool StatCounters::Run(bool write) {
  const std::uint8_t selector = registers_.Get(kStatSelector);
  const PortId port = PortOfStatSelector(kStatPort.Get(selector));
  const unsigned group = kStatGroup.Get(selector);
  if (!IsMacPort(port)) {
    registers_.Complain("sc step on a port that is not there");
  } else if (write) {
    ApplyWindow(port, group);
  } else {
    LoadWindow(port, group);
  }
  return true;
}

void StatCounters::LoadWindow(PortId port, unsigned group) {
  std::uint32_t word_a = 0;
  std::uint32_t word_b = 0;
  for (unsigned i = 0; i < kCounters; ++i) {
    const StatCounterRow& row = kStatCounterRows[i];
    if (row.group != group) continue;
    std::uint32_t& word = row.word == StatWord::kA ? word_a : word_b;
    word |= row.Slice().Put<std::uint32_t>(counters[port][i]);
  }
  registers_.Set(kStatWordA, word_a);
  registers_.Set(kStatWordB, word_b);
  registers_.Set(kStatOverflow, overflow[port]);
}

void StatCounters::ApplyWindow(PortId port, unsigned group) {
  for (unsigned i = 0; i < kCounters; ++i) {
    const StatCounterRow& row = kStatCounterRows[i];
    const bool in_a = row.word == StatWord::kA;
    if (row.group != group || !(in_a ? stored_.word_a : stored_.word_b)) continue;
    counters[port][i] = row.Slice().Get(registers_.Get(in_a ? kStatWordA : kStatWordB));
  }
  if (stored_.overflow) overflow[port] &= ~registers_.Get(kStatOverflow);
}

void StatCounters::State(StateArchive& archive) {
  for (const PortId port : kMacPorts) {
    archive.Group(NameOf(port), [&] { PortState(archive, port); });
  }
  archive.Group("stored_since_start", [&] {
    archive.Flag("word_a", stored_.word_a);
    archive.Flag("word_b", stored_.word_b);
    archive.Flag("overflow", stored_.overflow);
  });
  engine.State(archive);
}

void StatCounters::PortState(StateArchive& archive, PortId port) {
  for (unsigned i = 0; i < kCounters; ++i) {
    std::uint32_t& counter = counters[port][i];
    const StatCounterRow& row = kStatCounterRows[i];
    if (archive.Omits(row.name, counter == 0)) {
      counter = 0;
    } else {
      archive.Count(row.name, counter, Most(i));
    }
  }
  archive.Hex("overflow", overflow[port]);
}

}  // namespace chip
