#include "mac/stat_counters.h"

#include "core/engine.h"
#include "core/irq_guard.h"
#include "mac/stat_counters_registers.h"

namespace monitor {
namespace {

constexpr EngineStep kReadStep = ReadStep(kStatCommand);
constexpr EngineStep kWriteStep = WriteStep(kStatCommand);

constexpr std::array<const char*, kStatCounters> NamesOf(
    const std::array<StatCounterRow, kStatCounters>& rows) {
  std::array<const char*, kStatCounters> names{};
  for (unsigned i = 0; i < kStatCounters; ++i) names[i] = rows[i].name;
  return names;
}

bool FindPort(std::uint8_t port, std::uint8_t& selector) {
  if (!IsPort(port) || port == kPortCpu) return false;
  selector = kStatPort.Put(StatSelectorOf(PortOfCode(port)));
  return true;
}

void Select(std::uint8_t port_selector, unsigned group) {
  Write(kStatSelector, static_cast<std::uint8_t>(port_selector | group));
}

DriverStatus ReadGroup(std::uint8_t port_selector, unsigned group) {
  Select(port_selector, group);
  return RunEngine(kReadStep);
}

/// Clears the group. Word A receives what word B then holds.
DriverStatus ClearGroup(std::uint8_t port_selector, unsigned group) {
  Select(port_selector, group);
  Write(kStatWordB, 0);
  Write(kStatWordA, Read(kStatWordB));
  return RunEngine(kWriteStep);
}

}  // namespace

constinit const std::array<const char*, kStatCounters> StatCounterNames = NamesOf(kStatCounterRows);

DriverStatus ReadStatCounter(std::uint8_t port, unsigned index, std::uint32_t& value) {
  std::uint8_t selector;
  if (!FindPort(port, selector) || index >= kStatCounters) return DriverStatus::kRefused;
  const StatCounterRow& row = kStatCounterRows[index];
  const DriverStatus status = ReadGroup(selector, row.group);
  if (Failed(status)) return status;
  value = row.Slice().Get(Read(row.word == StatWord::kA ? kStatWordA : kStatWordB));
  return DriverStatus::kOk;
}

DriverStatus BatchReadStatCounters(std::uint8_t port, StatCounterBlock& block) {
  std::uint8_t selector;
  if (!FindPort(port, selector)) return DriverStatus::kRefused;
  for (unsigned group = 0; group < kStatGroups; ++group) {
    const DriverStatus status = ReadGroup(selector, group);
    if (Failed(status)) return status;
    const std::uint32_t word_a = Read(kStatWordA);
    const std::uint32_t word_b = Read(kStatWordB);
    for (unsigned i = 0; i < kStatCounters; ++i) {
      const StatCounterRow& row = kStatCounterRows[i];
      if (row.group != group) continue;
      block[i] = row.Slice().Get(row.word == StatWord::kA ? word_a : word_b);
    }
  }
  return DriverStatus::kOk;
}

DriverStatus ClearAllStatCounters(std::uint8_t port) {
  std::uint8_t selector;
  if (!FindPort(port, selector)) return DriverStatus::kRefused;
  for (unsigned group = 0; group < kStatGroups; ++group) {
    const DriverStatus status = ClearGroup(selector, group);
    if (Failed(status)) return status;
  }
  return DriverStatus::kOk;
}

DriverStatus CheckStatOverflow(std::uint8_t port, std::uint32_t& mask) {
  std::uint8_t selector;
  if (!FindPort(port, selector)) return DriverStatus::kRefused;
  const DriverStatus status = ReadGroup(selector, 0);
  if (Failed(status)) return status;
  mask = Read(kStatOverflow);
  return DriverStatus::kOk;
}

DriverStatus ClearStatOverflow(std::uint8_t port, std::uint32_t mask) {
  std::uint8_t selector;
  if (!FindPort(port, selector)) return DriverStatus::kRefused;
  Select(selector, 0);
  IrqGuard lock;
  Write(kStatOverflow, mask);
  return RunEngineUnlocking(kWriteStep, lock);
}

}  // namespace monitor
