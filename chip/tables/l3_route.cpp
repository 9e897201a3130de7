#include "chip/tables/l3_route.h"

#include "chip/tables/map_bits.h"
#include "tables/l3_route_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

/// The session is two bits wide and the bits above it do not exist.
constexpr std::uint8_t kEncapsulationBits = kRouteSession.Mask() | kRoutePppoe.Mask();

}  // namespace

L3RouteTable::L3RouteTable(RegisterFile& registers)
    : engine(registers, "l3", kRouteCommand, kTableEngineBits,
             [this](std::uint8_t command) { return Run(kEngineWrite.Get(command) != 0); }),
      registers_(registers) {
  engine.on_end = [this] { stored_ = {}; };
  Claim();
}

void L3RouteTable::Claim() {
  const auto entry = [this](std::uint32_t) { stored_.entry = true; };
  registers_.Define(kRouteIp, {.after_store = entry});
  registers_.Define(kRouteMask, {.after_store = entry});
  registers_.Define(kRouteEncapsulation, {.after_store = entry});
  registers_.Define(kRouteNextHop, {.after_store = entry});
  registers_.Define(kRouteFlags, {.after_store = entry});
  registers_.Define(kRouteIndex);
  registers_.Define(kRouteCounter,
                    {.after_store = [this](std::uint32_t) { stored_.counter = true; }});
  registers_.Define(kRouteOverflow,
                    {.after_store = [this](std::uint32_t) { stored_.overflow = true; }});
}

void L3RouteTable::Reset() {
  entries.fill({});
  overflow.fill(0);
  stored_ = {};
  engine.Reset();
}

bool L3RouteTable::Run(bool write) {
  Entry& entry = entries[registers_.Get(kRouteIndex) % kSlots];
  if (write) {
    ApplyWindow(entry);
  } else {
    LoadWindow(entry);
  }
  return true;
}

void L3RouteTable::LoadWindow(const Entry& entry) {
  registers_.Set(kRouteIp, entry.ip);
  registers_.Set(kRouteMask, entry.mask);
  registers_.Set(kRouteEncapsulation, entry.encapsulation);
  registers_.Set(kRouteNextHop, entry.next_hop);
  registers_.Set(kRouteFlags, entry.flags);
  registers_.Set(kRouteCounter, entry.counter);
  registers_.Set(kRouteOverflow, overflow);
}

void L3RouteTable::ApplyWindow(Entry& entry) {
  if (stored_.entry) {
    entry.ip = registers_.Get(kRouteIp);
    entry.mask = registers_.Get(kRouteMask);
    entry.encapsulation = registers_.Get(kRouteEncapsulation) & kEncapsulationBits;
    entry.next_hop = registers_.Get(kRouteNextHop);
    entry.flags = registers_.Get(kRouteFlags);
  }
  if (stored_.counter) entry.counter = registers_.Get(kRouteCounter);
  if (stored_.overflow) ClearEntryBits(overflow, registers_.Get(kRouteOverflow));
}

void L3RouteTable::State(StateArchive& archive) {
  archive.Table("entries", entries, [&](Entry& entry) {
    archive.Hex("ip", entry.ip);
    archive.Hex("mask", entry.mask);
    archive.Hex("encapsulation", entry.encapsulation, kEncapsulationBits);
    archive.Hex("next_hop", entry.next_hop);
    archive.Hex("flags", entry.flags);
    archive.Count("counter", entry.counter);
  });
  archive.Bytes("overflow", overflow);
  archive.Group("stored_since_start", [&] {
    archive.Flag("entry", stored_.entry);
    archive.Flag("counter", stored_.counter);
    archive.Flag("overflow", stored_.overflow);
  });
  engine.State(archive);
}

}  // namespace chip
