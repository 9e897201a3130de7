// NAT settings, NAT entries by index and by hash.
#include "hostile/explore.h"
#include "hostile/steps.h"

namespace hostile {
namespace {

using monitor::NatAccess;
using monitor::NatConfig;
using monitor::NatEntry;
using monitor::NatTable;
using std::uint16_t;
using std::uint32_t;
using std::uint8_t;

DriverStatus NatConfigRead(NatConfig& config) {
  config.ip = R32(0x510);
  config.portPrefix = R8(0x515);
  config.defaultAge = R16(0x51E);
  config.finAge = R16(0x520);
  const uint8_t flags = R8(0x51D, 0x3F);
  config.lanToWan = flags & 1;
  config.dmzToWan = flags >> 2 & 1;
  config.autoTcp = flags >> 3 & 1;
  config.autoUdp = flags >> 4 & 1;
  config.disableAgeOut = flags >> 5 & 1;
  config.filter = R8(0x105, 0x10) >> 4 & 1;
  return kOk;
}

DriverStatus NatConfigWrite(const NatConfig& config) {
  Lock();
  W32(0x510, config.ip);
  W8(0x515, config.portPrefix);
  W16(0x51E, config.defaultAge);
  W16(0x520, config.finAge);
  SetOrClear(0x51D, 0x01, config.lanToWan != 0);
  SetOrClear(0x51D, 0x04, config.dmzToWan != 0);
  if (config.filter != 0) {
    Set(0x105, 0x10);
  } else {
    Clear(0x51D, 0x10);
  }
  SetOrClear(0x51D, 0x08, config.autoTcp != 0);
  SetOrClear(0x51D, 0x10, config.autoUdp != 0);
  SetOrClear(0x51D, 0x20, config.disableAgeOut != 0);
  Unlock();
  return kOk;
}

TEST(Hostile, NatConfigRead) { Explore(NatConfigRead, monitor::NatConfigRead, Junk<NatConfig>()); }
TEST(Hostile, NatConfigWrite) {
  for (unsigned flags = 0; flags < 64; ++flags) {
    auto config = Junk<NatConfig>();
    config.lanToWan = flags & 1;
    config.dmzToWan = flags >> 1 & 1;
    config.autoTcp = flags >> 2 & 1;
    config.autoUdp = flags >> 3 & 1;
    config.disableAgeOut = flags >> 4 & 1;
    config.filter = flags >> 5 & 1;
    Explore(NatConfigWrite, monitor::NatConfigWrite, config);
  }
}

/// Bits 0, 1 and 2 of the command byte: read ready, write ready, result.
bool AwaitNat(uint8_t bit) { return Await(0x51C, bit, 0x07); }
void PulseNat(unsigned set, unsigned keep) {
  W8(0x51C, (R8(0x51C) | set) & keep);
  W8(0x51C, R8(0x51C) & 0xF7);
}
bool Succeeded(bool on_first_path = true) {
  return (R8(0x51C, 0x04, on_first_path ? 0x04 : 0x00) & 0x04) != 0;
}

DriverStatus ReadStep(unsigned slot, unsigned control, unsigned keep) {
  W8(0x51A, slot);
  W8(0x51B, control);
  if (!Ready(0x51C)) return kNotReady;
  PulseNat(0x08, keep);
  if (!AwaitNat(0x01)) return kNotReady;
  return Succeeded() ? kOk : kRefused;
}

void Fill(NatEntry& entry, unsigned slot, bool server_table) {
  entry.sip = R32(0x500);
  entry.dip = R32(0x508);
  entry.sport = R16(0x504);
  entry.dport = R16(0x50C);
  entry.protocol = R8(0x51B) >> 2 & 1;
  entry.age = R16(0x516);
  entry.server = R8(0x51B) >> 1 & 1;
  entry.nsip = R32(0x548);
  entry.nsport = R16(0x506);
  entry.valid = R8((server_table ? 0x543 : 0x523) + slot / 8) >> slot % 8 & 1;
}

void StoreEntry(const NatEntry& entry, bool server_table) {
  W32(0x500, entry.sip);
  W32(0x508, entry.dip);
  W16(0x504, entry.sport);
  W16(0x50C, entry.dport);
  W32(0x548, entry.nsip);
  W16(0x506, entry.nsport);
  W16(0x516, entry.age);
  const bool server = server_table && entry.server != 0;
  W8(0x51B, (server_table ? 1U : 0U) | (server ? 2U : 0U) | (entry.protocol == 1 ? 4U : 0U));
}

unsigned NatHash(uint32_t dip, uint16_t dport) { return (dip ^ dport) & 0x7F; }

constexpr unsigned kProbes = 33;
unsigned g_match_at = kProbes;  ///< Probe that matches on the first path, if there is such a one.

/// Probe k reads a slot; kNothing when it holds another destination.
DriverStatus Probe(unsigned k, unsigned slot, const NatEntry& entry) {
  Part();
  const DriverStatus status = ReadStep(slot, 0, 0xEE);
  if (status != kOk) return status;
  const bool match = k == g_match_at;
  return Equals32(0x508, entry.dip, match) && Equals16(0x50C, entry.dport, match) ? kOk : kNothing;
}

/// The overflow slot that writes and deletes try after probe k.
unsigned NextSlot(unsigned slot, unsigned k) { return 0x80 | (slot & 0x60) | k; }

DriverStatus NatRead(NatTable table, NatAccess access, NatEntry& entry) {
  if (access == NatAccess::kByIndex) {
    const bool server = table == NatTable::kServer;
    if (server && entry.index > 15) return kRefused;
    const DriverStatus status = ReadStep(entry.index, server ? 1 : 0, 0xEE);
    if (status == kOk) Fill(entry, entry.index, server);
    return status;
  }
  const unsigned home = NatHash(entry.dip, entry.dport);
  for (unsigned k = 0; k < kProbes; ++k) {
    const unsigned slot = k == 0 ? home : home | 0x80;
    const DriverStatus status = Probe(k, slot, entry);
    if (status == kOk) {
      Part();
      Fill(entry, slot, false);
      entry.index = static_cast<uint8_t>(slot);
    }
    if (status != kNothing) return status;
  }
  return kRefused;
}

DriverStatus WriteByIndex(bool server, const NatEntry& entry) {
  if (server && entry.index > 15) return kRefused;
  Lock();
  W8(0x51A, entry.index);
  StoreEntry(entry, server);
  if (!Ready(0x51C)) {
    Unlock();
    return kNotReady;
  }
  PulseNat(0x58, 0xFD);
  Unlock();
  if (!AwaitNat(0x02)) return kNotReady;
  return Succeeded() ? kOk : kRefused;
}

DriverStatus ProbeForWrite(NatEntry& entry) {
  StoreEntry(entry, false);
  unsigned slot = NatHash(entry.dip, entry.dport);
  for (unsigned k = 0; k < kProbes; ++k) {
    Part();
    W8(0x51A, slot);
    if (!Ready(0x51C)) return kNotReady;
    PulseNat(0x58, 0xFD);
    if (!AwaitNat(0x02)) return kNotReady;
    if (Succeeded(false)) {
      entry.index = static_cast<uint8_t>(slot);
      return kOk;
    }
    slot = NextSlot(slot, k);
  }
  return kRefused;
}

DriverStatus NatWrite(NatTable table, NatAccess access, NatEntry& entry) {
  if (access == NatAccess::kByIndex) return WriteByIndex(table == NatTable::kServer, entry);
  Lock();
  const DriverStatus status = ProbeForWrite(entry);
  Unlock();
  return status;
}

DriverStatus NatDelete(NatTable table, NatAccess access, NatEntry& entry) {
  if (access == NatAccess::kByIndex) {
    const bool server = table == NatTable::kServer;
    if (server && entry.index > 15) return kRefused;
    const DriverStatus status = ReadStep(entry.index, server ? 1 : 0, 0x6E);
    if (status != kOk) return status;
    if (!Ready(0x51C)) return kNotReady;
    PulseNat(0x18, 0xBD);
    return Succeeded() ? kOk : kRefused;
  }
  unsigned slot = NatHash(entry.dip, entry.dport);
  for (unsigned k = 0; k < kProbes; ++k) {
    const DriverStatus status = Probe(k, slot, entry);
    if (status == kOk) {
      entry.index = static_cast<uint8_t>(slot);
      Part();
      if (!Ready(0x51C)) return kNotReady;
      PulseNat(0x18, 0xBD);
      if (!AwaitNat(0x02)) return kNotReady;
      return Succeeded() ? kOk : kRefused;
    }
    if (status != kNothing) return status;
    slot = NextSlot(slot, k);
  }
  return kRefused;
}

NatEntry AnyEntry(uint8_t index) {
  auto entry = Junk<NatEntry>();
  entry.index = index;
  entry.protocol = static_cast<uint8_t>(Random() & 1);
  entry.server = static_cast<uint8_t>(Random() & 1);
  return entry;
}

using Operation = DriverStatus (*)(NatTable, NatAccess, NatEntry&);

/// Slots of both tables, and keys whose home slots lie in each overflow group.
void ExploreNat(Operation model, Operation driver) {
  for (const uint8_t index : Bytes{0, 1, 7, 8, 15, 16, 127, 128, 255}) {
    for (unsigned round = 0; round < 2; ++round) {
      Explore(model, driver, NatTable::kMain, NatAccess::kByIndex, AnyEntry(index));
      Explore(model, driver, NatTable::kServer, NatAccess::kByIndex, AnyEntry(index));
    }
  }
  for (const uint8_t home : Bytes{0x00, 0x25, 0x5A, 0x7F}) {
    NatEntry entry = AnyEntry(Junk<uint8_t>());
    entry.dport = static_cast<uint16_t>((entry.dport & 0xFF80) | ((entry.dip ^ home) & 0x7F));
    g_match_at = home == 0x00 ? 0 : home / 4;
    Explore({.parts = 1}, model, driver, NatTable::kServer, NatAccess::kByHash, entry);
    if (home != 0x25) continue;
    g_match_at = kProbes;
    Explore({.parts = 1}, model, driver, NatTable::kMain, NatAccess::kByHash, entry);
  }
}

TEST(Hostile, NatRead) { ExploreNat(NatRead, monitor::NatRead); }
TEST(Hostile, NatWrite) { ExploreNat(NatWrite, monitor::NatWrite); }
TEST(Hostile, NatDelete) { ExploreNat(NatDelete, monitor::NatDelete); }
TEST(Hostile, NatHash) {
  for (unsigned round = 0; round < 1000; ++round) {
    Explore(NatHash, monitor::NatHash, Junk<uint32_t>(), Junk<uint16_t>());
  }
}

}  // namespace
}  // namespace hostile
