// Statistic counters.
#include "mac/stat_counters.h"

#include "hostile/explore.h"
#include "hostile/steps.h"

namespace hostile {
namespace {

using std::uint32_t;
using std::uint8_t;

/// Where a counter lies: its group, its word (A at 0x858, B at 0x854), its lowest bit and width.
struct Place {
  unsigned group;
  char word;
  unsigned low;
  unsigned width;
};

constexpr Place kPlaces[28] = {
    {0, 'A', 0, 32}, {0, 'B', 0, 24},  {0, 'B', 24, 8},  {1, 'A', 0, 16}, {1, 'A', 16, 16},
    {1, 'B', 0, 32}, {2, 'A', 0, 32},  {2, 'B', 0, 32},  {3, 'A', 0, 24}, {3, 'A', 24, 8},
    {3, 'B', 0, 16}, {3, 'B', 16, 16}, {4, 'A', 0, 24},  {4, 'A', 24, 8}, {4, 'B', 0, 24},
    {4, 'B', 24, 8}, {5, 'A', 0, 16},  {5, 'A', 16, 16}, {5, 'B', 0, 16}, {5, 'B', 16, 16},
    {6, 'A', 0, 16}, {6, 'A', 16, 8},  {6, 'A', 24, 8},  {6, 'B', 0, 16}, {6, 'B', 16, 16},
    {7, 'A', 0, 16}, {7, 'A', 16, 16}, {7, 'B', 24, 8},
};

uint32_t Slice(const Place& place, uint32_t word) {
  return place.width == 32 ? word : word >> place.low & ((1U << place.width) - 1);
}

bool IsMacPort(uint8_t port) { return port == 1 || port == 2 || port == 4; }
unsigned Selector(uint8_t port, unsigned group) {
  return (port == 1 ? 0U : port == 2 ? 8U : 16U) | group;
}

DriverStatus ReadGroup(uint8_t port, unsigned group) {
  W8(0x85D, Selector(port, group));
  return Step(0x85C, 0x04, 0xF6, 0x01);
}

DriverStatus ReadStatCounter(uint8_t port, unsigned index, uint32_t& value) {
  if (!IsMacPort(port) || index > 27) return kRefused;
  const Place& place = kPlaces[index];
  if (ReadGroup(port, place.group) != kOk) return kNotReady;
  value = Slice(place, R32(place.word == 'A' ? 0x858 : 0x854));
  return kOk;
}

DriverStatus BatchReadStatCounters(uint8_t port, monitor::StatCounterBlock& block) {
  if (!IsMacPort(port)) return kRefused;
  for (unsigned group = 0; group < 8; ++group) {
    Part();
    if (ReadGroup(port, group) != kOk) return kNotReady;
    const uint32_t a = R32(0x858);
    const uint32_t b = R32(0x854);
    for (unsigned i = 0; i < 28; ++i) {
      const Place& place = kPlaces[i];
      if (place.group == group) block[i] = Slice(place, place.word == 'A' ? a : b);
    }
  }
  return kOk;
}

DriverStatus ClearAllStatCounters(uint8_t port) {
  if (!IsMacPort(port)) return kRefused;
  for (unsigned group = 0; group < 8; ++group) {
    Part();
    W8(0x85D, Selector(port, group));
    W32(0x854, 0);
    W32(0x858, R32(0x854));
    if (Step(0x85C, 0x0C, 0xFD, 0x02) != kOk) return kNotReady;
  }
  return kOk;
}

DriverStatus CheckStatOverflow(uint8_t port, uint32_t& mask) {
  if (!IsMacPort(port)) return kRefused;
  if (ReadGroup(port, 0) != kOk) return kNotReady;
  mask = R32(0x850);
  return kOk;
}

DriverStatus ClearStatOverflow(uint8_t port, uint32_t mask) {
  if (!IsMacPort(port)) return kRefused;
  W8(0x85D, Selector(port, 0));
  Lock();
  W32(0x850, mask);
  return StepUnlocking(0x85C, 0x0C, 0xFD, 0x02);
}

constexpr uint8_t kPorts[] = {0, 1, 2, 3, 4, 5, 8, 16, 255};

TEST(Hostile, ReadStatCounter) {
  for (const uint8_t port : kPorts) {
    for (unsigned index = 0; index < 30; ++index) {
      Explore(ReadStatCounter, monitor::ReadStatCounter, port, index, Junk<uint32_t>());
    }
    Explore(ReadStatCounter, monitor::ReadStatCounter, port, 256U, Junk<uint32_t>());
  }
}
TEST(Hostile, BatchReadStatCounters) {
  for (const uint8_t port : kPorts) {
    Explore({.parts = port == 1 ? 2U : 1U}, BatchReadStatCounters, monitor::BatchReadStatCounters,
            port, Junk<monitor::StatCounterBlock>());
  }
}
TEST(Hostile, ClearAllStatCounters) {
  for (const uint8_t port : kPorts) {
    Explore({.parts = port == 1 ? 2U : 1U}, ClearAllStatCounters, monitor::ClearAllStatCounters,
            port);
  }
}
TEST(Hostile, CheckStatOverflow) {
  for (const uint8_t port : kPorts) {
    Explore(CheckStatOverflow, monitor::CheckStatOverflow, port, Junk<uint32_t>());
  }
}
TEST(Hostile, ClearStatOverflow) {
  for (const uint8_t port : kPorts) {
    Explore(ClearStatOverflow, monitor::ClearStatOverflow, port, Junk<uint32_t>());
  }
}

}  // namespace
}  // namespace hostile
