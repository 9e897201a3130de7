// One register access of the monitor on the model, through the socket that its drivers use.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "chip/router_chip.h"
#include "core/bus.h"

namespace {

chip::RouterChip& Chip() {
  static chip::RouterChip chip;
  static const bool attached = (chip::Attach(chip), true);
  (void)attached;
  return chip;
}

/// The bytes that belong to registers, in order.
std::vector<std::uint32_t> RegisterBytes() {
  chip::RegisterFile& registers = Chip().registers;
  std::vector<std::uint32_t> offsets;
  for (std::uint32_t offset = 0; offset < chip::RegisterFile::kSize; ++offset) {
    registers.ForgetComplaints();
    (void)registers.Load(offset, 1);
    if (registers.Complaints().empty()) offsets.push_back(offset);
  }
  return offsets;
}

void LoadEach(benchmark::State& state, const std::vector<std::uint32_t>& offsets) {
  Chip();
  for (auto _ : state) {
    for (const std::uint32_t offset : offsets) {
      benchmark::DoNotOptimize(monitor::WindowLoad8(offset));
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(offsets.size()));
}

/// Every register's bytes in order.
void Sweep(benchmark::State& state) { LoadEach(state, RegisterBytes()); }

/// The same bytes in an order that no cache or predictor can guess.
void Random(benchmark::State& state) {
  std::vector<std::uint32_t> offsets = RegisterBytes();
  std::shuffle(offsets.begin(), offsets.end(), std::mt19937(1));
  LoadEach(state, offsets);
}

constexpr std::uint32_t kRouteIp = 0x600;
constexpr std::uint32_t kRouteMask = 0x604;
constexpr std::uint32_t kRouteEncapsulation = 0x605;
constexpr std::uint32_t kRouteNextHop = 0x608;
constexpr std::uint32_t kRouteFlags = 0x60C;
constexpr std::uint32_t kRouteCommand = 0x60D;
constexpr std::uint32_t kRouteIndex = 0x60E;
constexpr std::uint8_t kStart = 0x04;
constexpr std::uint8_t kReadDone = 0x01;

/// Reads a route with the accesses of its driver. Returns their number.
int ReadRoute(std::uint8_t index) {
  using namespace monitor;  // NOLINT: the six accesses
  WindowStore8(kRouteIndex, index);
  benchmark::DoNotOptimize(WindowLoad8(kRouteCommand));
  const auto idle = static_cast<std::uint8_t>(WindowLoad8(kRouteCommand) & ~kReadDone);
  WindowStore8(kRouteCommand, idle | kStart);
  const std::uint8_t running = WindowLoad8(kRouteCommand);
  WindowStore8(kRouteCommand, static_cast<std::uint8_t>(running & ~kStart));
  int accesses = 7;
  while ((WindowLoad8(kRouteCommand) & kReadDone) == 0) ++accesses;
  benchmark::DoNotOptimize(WindowLoad32(kRouteIp));
  benchmark::DoNotOptimize(WindowLoad32(kRouteNextHop));
  benchmark::DoNotOptimize(WindowLoad8(kRouteMask));
  benchmark::DoNotOptimize(WindowLoad8(kRouteFlags));
  benchmark::DoNotOptimize(WindowLoad8(kRouteEncapsulation));
  return accesses + 5;
}

/// An engine command with its handshake, for each access.
void EngineCommand(benchmark::State& state) {
  Chip();
  std::int64_t accesses = 0;
  std::uint8_t index = 0;
  for (auto _ : state) accesses += ReadRoute(++index & 0x7F);
  state.SetItemsProcessed(accesses);
}

BENCHMARK(Sweep);
BENCHMARK(Random);
BENCHMARK(EngineCommand);

}  // namespace

BENCHMARK_MAIN();
