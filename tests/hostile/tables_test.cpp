// L3 routes, multicast groups, ARP.
#include "hostile/explore.h"
#include "hostile/steps.h"

namespace hostile {
namespace {

using monitor::ArpEntry;
using monitor::EntryMap;
using monitor::L3Route;
using monitor::McastEntry;
using monitor::McastSettings;
using std::uint32_t;
using std::uint8_t;

DriverStatus ReadSwitch(unsigned bit, uint8_t& on) {
  on = R8(0x105, 0xFF) >> bit & 1;
  return kOk;
}
DriverStatus WriteSwitch(unsigned bit, bool on) {
  Lock();
  SetOrClear(0x105, 1U << bit, on);
  Unlock();
  return kOk;
}

DriverStatus L3Read(unsigned index, L3Route& route) {
  if (index > 63) return kRefused;
  W8(0x60E, index);
  if (Step(0x60D, 0x04, 0xE6, 0x01) != kOk) return kNotReady;
  route.ip = R32(0x600);
  route.nextHop = R32(0x608);
  route.mask = R8(0x604);
  const uint8_t flags = R8(0x60C, 0x1F);
  route.valid = flags >> 4 & 1;
  if (route.valid != 0) {
    const uint8_t port = flags & 0x0F;
    if (port != 1 && port != 2 && port != 4 && port != 8) return kRefused;
    route.port = port;
  }
  route.direct = flags >> 5 & 1;
  route.wanMac = flags >> 6 & 1;
  const uint8_t session = R8(0x605);
  route.pppoe = session & 1;
  route.session = session >> 1 & 3;
  return kOk;
}

DriverStatus L3Write(unsigned index, const L3Route& route) {
  if (index > 63 || route.mask > 32) return kRefused;
  Lock();
  W8(0x60E, index);
  W32(0x600, route.ip);
  W32(0x608, route.nextHop);
  W8(0x604, route.mask);
  const uint8_t port = route.port;
  if (port != 1 && port != 2 && port != 4 && port != 8) {
    Unlock();
    return kRefused;
  }
  W8(0x60C, port | (route.direct != 0 ? 0x20U : 0U) | (route.wanMac != 0 ? 0x50U : 0x10U));
  W8(0x605, route.pppoe | route.session * 2U);
  return StepUnlocking(0x60D, 0x0C, 0xED, 0x02);
}

DriverStatus L3Delete(unsigned index) {
  if (index > 63) return kRefused;
  W8(0x60E, index);
  if (Step(0x60D, 0x04, 0xE6, 0x01) != kOk) return kNotReady;
  Lock();
  W8(0x60E, index);
  W8(0x60C, R8(0x60C) & 0xEF);
  return StepUnlocking(0x60D, 0x0C, 0xED, 0x02);
}

DriverStatus L3ReadCounter(unsigned index, uint32_t& value) {
  if (index > 63) return kRefused;
  W8(0x60E, index);
  if (Step(0x60D, 0x14, 0xF6, 0x01) != kOk) return kNotReady;
  value = R32(0x610);
  return kOk;
}

DriverStatus L3WriteCounter(unsigned index, uint32_t value) {
  if (index > 63) return kRefused;
  Lock();
  W8(0x60E, index);
  W32(0x610, value);
  return StepUnlocking(0x60D, 0x1C, 0xFD, 0x02);
}

DriverStatus L3CheckOverflow(EntryMap& map) {
  if (Step(0x60D, 0x04, 0xF6, 0x01) != kOk) return kNotReady;
  ReadAll(0x614, map);
  return kOk;
}

DriverStatus L3ClearOverflow(const EntryMap& map) {
  Lock();
  WriteAll(0x614, map);
  return StepUnlocking(0x60D, 0x0C, 0xFD, 0x02);
}

DriverStatus L3ReadFilter(uint8_t& on) { return ReadSwitch(6, on); }
DriverStatus L3WriteFilter(uint8_t on) { return WriteSwitch(6, on != 0); }

constexpr unsigned kSlots[] = {0, 5, 62, 63, 64, 127, 255, 256, 0x10000, 0x10005, ~0U};

TEST(Hostile, L3Read) {
  for (const unsigned index : kSlots) Explore(L3Read, monitor::L3Read, index, Junk<L3Route>());
}
TEST(Hostile, L3Write) {
  for (const unsigned index : kSlots) {
    for (const uint8_t port : Bytes{0, 1, 2, 3, 4, 8, 9, 16, 255}) {
      for (const uint8_t mask : Bytes{0, 24, 32, 33, 255}) {
        auto route = Junk<L3Route>();
        route.port = port;
        route.mask = mask;
        route.direct = static_cast<uint8_t>(Random() & 1);
        route.wanMac = static_cast<uint8_t>(Random() & 1);
        Explore(L3Write, monitor::L3Write, index, route);
      }
    }
  }
}
TEST(Hostile, L3Delete) {
  for (const unsigned index : kSlots) Explore(L3Delete, monitor::L3Delete, index);
}
TEST(Hostile, L3ReadCounter) {
  for (const unsigned index : kSlots) {
    Explore(L3ReadCounter, monitor::L3ReadCounter, index, Junk<uint32_t>());
  }
}
TEST(Hostile, L3WriteCounter) {
  for (const unsigned index : kSlots) {
    Explore(L3WriteCounter, monitor::L3WriteCounter, index, Junk<uint32_t>());
  }
}
TEST(Hostile, L3CheckOverflow) {
  Explore(L3CheckOverflow, monitor::L3CheckOverflow, Junk<EntryMap>());
}
TEST(Hostile, L3ClearOverflow) {
  Explore(L3ClearOverflow, monitor::L3ClearOverflow, Junk<EntryMap>());
}
TEST(Hostile, L3ReadFilter) { Explore(L3ReadFilter, monitor::L3ReadFilter, Junk<uint8_t>()); }
TEST(Hostile, L3WriteFilter) {
  for (const uint8_t on : Bytes{0, 1}) Explore(L3WriteFilter, monitor::L3WriteFilter, on);
}

DriverStatus McastRead(unsigned index, McastEntry& entry) {
  if (index > 63) return kRefused;
  W8(0x622, index);
  if (Step(0x621, 0x04, 0xF6, 0x01) != kOk) return kNotReady;
  entry.ip = R32(0x61C);
  const uint8_t ports = R8(0x620, 0x1F);
  entry.ports = ports & 0x0F;
  entry.valid = ports >> 4 & 1;
  return kOk;
}

DriverStatus McastWrite(unsigned index, const McastEntry& entry) {
  if (index > 63 || entry.ports > 15) return kRefused;
  Lock();
  W8(0x622, index);
  W32(0x61C, entry.ip);
  W8(0x620, entry.ports | 0x10U);
  return StepUnlocking(0x621, 0x0C, 0xED, 0x02);
}

DriverStatus McastDelete(unsigned index) {
  if (index > 63) return kRefused;
  W8(0x622, index);
  if (Step(0x621, 0x04, 0xF6, 0x01) != kOk) return kNotReady;
  Lock();
  W8(0x622, index);
  W8(0x620, R8(0x620) & 0xEF);
  return StepUnlocking(0x621, 0x0C, 0xED, 0x02);
}

DriverStatus McastReadCounter(unsigned index, uint32_t& value) {
  if (index > 63) return kRefused;
  W8(0x622, index);
  if (Step(0x621, 0x04, 0xF6, 0x01) != kOk) return kNotReady;
  value = R32(0x62C);
  return kOk;
}

DriverStatus McastWriteCounter(unsigned index, uint32_t value) {
  if (index > 63) return kRefused;
  Lock();
  W8(0x622, index);
  W32(0x62C, value);
  return StepUnlocking(0x621, 0x1C, 0xFD, 0x02);
}

DriverStatus McastCheckOverflow(EntryMap& map) {
  if (Step(0x621, 0x04, 0xF6, 0x01) != kOk) return kNotReady;
  ReadAll(0x624, map);
  return kOk;
}

DriverStatus McastClearOverflow(const EntryMap& map) {
  Lock();
  WriteAll(0x624, map);
  return StepUnlocking(0x621, 0x0C, 0xFD, 0x02);
}

DriverStatus McastReadFlood(McastSettings& settings) { return ReadSwitch(3, settings.flood); }
DriverStatus McastWriteFlood(const McastSettings& settings) {
  return WriteSwitch(3, settings.flood != 0);
}

TEST(Hostile, McastRead) {
  for (const unsigned index : kSlots) {
    Explore(McastRead, monitor::McastRead, index, Junk<McastEntry>());
  }
}
TEST(Hostile, McastWrite) {
  for (const unsigned index : kSlots) {
    for (const uint8_t ports : Bytes{0, 1, 2, 4, 8, 10, 15, 16, 17, 31, 32, 64, 128, 255}) {
      auto entry = Junk<McastEntry>();
      entry.ports = ports;
      Explore(McastWrite, monitor::McastWrite, index, entry);
    }
  }
}
TEST(Hostile, McastDelete) {
  for (const unsigned index : kSlots) Explore(McastDelete, monitor::McastDelete, index);
}
TEST(Hostile, McastReadCounter) {
  for (const unsigned index : kSlots) {
    Explore(McastReadCounter, monitor::McastReadCounter, index, Junk<uint32_t>());
  }
}
TEST(Hostile, McastWriteCounter) {
  for (const unsigned index : kSlots) {
    Explore(McastWriteCounter, monitor::McastWriteCounter, index, Junk<uint32_t>());
  }
}
TEST(Hostile, McastCheckOverflow) {
  Explore(McastCheckOverflow, monitor::McastCheckOverflow, Junk<EntryMap>());
}
TEST(Hostile, McastClearOverflow) {
  Explore(McastClearOverflow, monitor::McastClearOverflow, Junk<EntryMap>());
}
TEST(Hostile, McastReadFlood) {
  Explore(McastReadFlood, monitor::McastReadFlood, Junk<McastSettings>());
}
TEST(Hostile, McastWriteFlood) {
  for (const uint8_t flood : Bytes{0, 1}) {
    for (const uint8_t filter : Bytes{0, 1}) {
      Explore(McastWriteFlood, monitor::McastWriteFlood, McastSettings{flood, filter});
    }
  }
}

DriverStatus ArpRead(unsigned index, ArpEntry& entry) {
  index &= 0xFFFF;
  if (index > 63) return kRefused;
  W8(0x63C, index);
  if (Step(0x63B, 0x04, 0xF6, 0x01) != kOk) return kNotReady;
  entry.ip = R32(0x630);
  ReadAll(0x634, entry.mac);
  entry.valid = R8(0x63D, 0x01) & 1;
  return kOk;
}

DriverStatus ArpWrite(unsigned index, const ArpEntry& entry) {
  index &= 0xFFFF;
  if (index > 63) return kRefused;
  Lock();
  W8(0x63C, index);
  W8(0x63D, 0x01);
  W32(0x630, entry.ip);
  WriteAll(0x634, entry.mac);
  return StepUnlocking(0x63B, 0x0C, 0xFD, 0x02);
}

DriverStatus ArpDelete(unsigned index) {
  index &= 0xFFFF;
  if (index > 63) return kRefused;
  W8(0x63C, index);
  if (Step(0x63B, 0x04, 0xF6, 0x01) != kOk) return kNotReady;
  Lock();
  Clear(0x63D, 0x01);
  return StepUnlocking(0x63B, 0x0C, 0xFD, 0x02);
}

DriverStatus ArpReadReference(EntryMap& map) {
  if (Step(0x63B, 0x04, 0xF6, 0x01) != kOk) return kNotReady;
  ReadAll(0x640, map);
  return kOk;
}

DriverStatus ArpClearReference(const EntryMap& map) {
  Lock();
  WriteAll(0x640, map);
  return StepUnlocking(0x63B, 0x0C, 0xFD, 0x02);
}

DriverStatus ArpReadFilter(uint8_t& on) { return ReadSwitch(7, on); }
DriverStatus ArpWriteFilter(uint8_t on) { return WriteSwitch(7, on != 0); }

TEST(Hostile, ArpRead) {
  for (const unsigned index : kSlots) Explore(ArpRead, monitor::ArpRead, index, Junk<ArpEntry>());
}
TEST(Hostile, ArpWrite) {
  for (const unsigned index : kSlots) Explore(ArpWrite, monitor::ArpWrite, index, Junk<ArpEntry>());
}
TEST(Hostile, ArpDelete) {
  for (const unsigned index : kSlots) Explore(ArpDelete, monitor::ArpDelete, index);
}
TEST(Hostile, ArpReadReference) {
  Explore(ArpReadReference, monitor::ArpReadReference, Junk<EntryMap>());
}
TEST(Hostile, ArpClearReference) {
  Explore(ArpClearReference, monitor::ArpClearReference, Junk<EntryMap>());
}
TEST(Hostile, ArpReadFilter) { Explore(ArpReadFilter, monitor::ArpReadFilter, Junk<uint8_t>()); }
TEST(Hostile, ArpWriteFilter) {
  for (const uint8_t on : Bytes{0, 1, 2, 128, 255}) {
    Explore(ArpWriteFilter, monitor::ArpWriteFilter, on);
  }
}

}  // namespace
}  // namespace hostile
