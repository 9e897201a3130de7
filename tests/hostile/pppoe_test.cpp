// PPPoE sessions, PDR, PXT.
#include "hostile/explore.h"
#include "hostile/steps.h"

namespace hostile {
namespace {

using monitor::PdrEntry;
using monitor::PstEntry;
using monitor::PxtEntry;
using std::uint16_t;
using std::uint32_t;
using std::uint8_t;

/// The write step of these tables ends with a store of 0x09.
DriverStatus WriteStep(unsigned command) {
  if (!Ready(command)) {
    Unlock();
    return kNotReady;
  }
  W8(command, (R8(command) | 0x0C) & 0xFD);
  W8(command, 0x09);
  Unlock();
  return Done(command, 0x02);
}

DriverStatus ReadStep(unsigned command) { return Step(command, 0x04, 0xF6, 0x01); }

// An ID in a record: its bytes go to the register in order, and come back in the other order.
using Id = std::array<uint8_t, 2>;
void WriteId(unsigned offset, const Id& id) { W16(offset, id[0] * 256U | id[1]); }
Id ReadId(unsigned offset) {
  const uint16_t number = R16(offset);
  return {static_cast<uint8_t>(number & 0xFF), static_cast<uint8_t>(number >> 8)};
}

DriverStatus PstRead(unsigned index, PstEntry& entry) {
  if (index > 3) return kRefused;
  W8(0xA0E, index * 16);
  if (ReadStep(0xA0F) != kOk) return kNotReady;
  entry.ip = R32(0xA00);
  entry.sessionId = ReadId(0xA04);
  entry.vlanId = ReadId(0xA06);
  ReadAll(0xA08, entry.serverMac);
  const uint8_t flags = R8(0xA0E);
  entry.valid = flags & 1;
  entry.tag = flags >> 2 & 1;
  entry.force = flags >> 3 & 1;
  entry.used = flags >> 1 & 1;
  return kOk;
}

DriverStatus PstWrite(unsigned index, const PstEntry& entry) {
  if (index > 3) return kRefused;
  Lock();
  W8(0xA0E, index * 16 | 0x01U | (entry.tag != 0 ? 0x04U : 0U) | (entry.force != 0 ? 0x08U : 0U) |
                (entry.used != 0 ? 0x02U : 0U));
  W32(0xA00, entry.ip);
  WriteId(0xA04, entry.sessionId);
  WriteId(0xA06, entry.vlanId);
  WriteAll(0xA08, entry.serverMac);
  return WriteStep(0xA0F);
}

DriverStatus PstDelete(unsigned index) {
  if (index > 3) return kRefused;
  W8(0xA0E, index * 16);
  if (ReadStep(0xA0F) != kOk) return kNotReady;
  Lock();
  Clear(0xA0E, 0x01);
  return WriteStep(0xA0F);
}

DriverStatus PstClear(unsigned index) {
  PstEntry entry;
  if (hostile::PstRead(index, entry) != kOk) return kRefused;
  entry.used = 0;
  return hostile::PstWrite(index, entry) == kOk ? kOk : kRefused;
}

DriverStatus PdrRead(unsigned index, PdrEntry& entry) {
  if (index > 63) return kRefused;
  W8(0xA14, index);
  Pulse(0xA16, 0x04, 0xF6);
  if (Done(0xA16, 0x01) != kOk) return kNotReady;
  entry.ip = R32(0xA10);
  const uint8_t flags = R8(0xA15);
  entry.valid = flags & 1;
  entry.pppoe = flags >> 1 & 1;
  entry.sessionNumber = flags >> 2 & 3;
  return kOk;
}

DriverStatus PdrWrite(unsigned index, const PdrEntry& entry) {
  if (index > 63) return kRefused;
  Lock();
  W32(0xA10, entry.ip);
  W8(0xA15, (entry.sessionNumber * 4U & 0x0C) | (entry.pppoe != 0 ? 0x03U : 0x01U));
  W8(0xA14, index);
  return WriteStep(0xA16);
}

DriverStatus PdrDelete(unsigned index) {
  if (index > 63) return kRefused;
  W8(0xA14, index);
  if (ReadStep(0xA16) != kOk) return kNotReady;
  Lock();
  Clear(0xA15, 0x01);
  return WriteStep(0xA16);
}

DriverStatus PxtRead(unsigned index, PxtEntry& entry) {
  if (index > 3) return kRefused;
  W8(0xA39, index * 16);
  if (ReadStep(0xA3A) != kOk) return kNotReady;
  ReadAll(0xA20, entry.internalMac);
  ReadAll(0xA28, entry.externalMac);
  entry.internalSessionId = ReadId(0xA30);
  entry.externalSessionId = ReadId(0xA32);
  entry.internalVlanId = ReadId(0xA34);
  entry.externalVlanId = ReadId(0xA36);
  const uint8_t flags = R8(0xA38);
  entry.internalUsed = flags & 1;
  entry.internalForce = flags >> 1 & 1;
  entry.internalTag = flags >> 2 & 1;
  entry.externalUsed = flags >> 4 & 1;
  entry.externalForce = flags >> 5 & 1;
  entry.externalTag = flags >> 6 & 1;
  const uint8_t port = R8(0xA39);
  entry.port = port >> 6;
  entry.valid = port & 1;
  return kOk;
}

DriverStatus PxtWrite(unsigned index, const PxtEntry& entry) {
  if (index > 3) return kRefused;
  Lock();
  WriteAll(0xA20, entry.internalMac);
  WriteAll(0xA28, entry.externalMac);
  WriteId(0xA30, entry.internalSessionId);
  WriteId(0xA32, entry.externalSessionId);
  WriteId(0xA34, entry.internalVlanId);
  WriteId(0xA36, entry.externalVlanId);
  unsigned flags = 0;
  if (entry.internalUsed != 0) flags |= 0x01;
  if (entry.internalForce != 0) flags |= 0x02;
  if (entry.internalTag != 0) flags |= 0x04;
  if (entry.externalUsed != 0) flags |= 0x10;
  if (entry.externalForce != 0) flags |= 0x20;
  if (entry.externalTag != 0) flags |= 0x40;
  W8(0xA38, flags);
  W8(0xA39, index * 16 | entry.port * 64U | 0x01U);
  return WriteStep(0xA3A);
}

DriverStatus PxtDelete(unsigned index) {
  if (index > 3) return kRefused;
  W8(0xA39, index * 16);
  if (ReadStep(0xA3A) != kOk) return kNotReady;
  Lock();
  Clear(0xA39, 0x01);
  return WriteStep(0xA3A);
}

DriverStatus PxtSetUsed(unsigned index, uint8_t internal, uint8_t external) {
  PxtEntry entry;
  if (hostile::PxtRead(index, entry) != kOk) return kRefused;
  entry.internalUsed = internal;
  entry.externalUsed = external;
  for (Id* id : {&entry.internalSessionId, &entry.externalSessionId, &entry.internalVlanId,
                 &entry.externalVlanId}) {
    std::swap((*id)[0], (*id)[1]);
  }
  return hostile::PxtWrite(index, entry) == kOk ? kOk : kRefused;
}

constexpr unsigned kSmall[] = {0, 1, 2, 3, 4, 15, 16, 255, 256, 0x10000, 0x10001, ~0U};
constexpr unsigned kSlots[] = {0, 5, 62, 63, 64, 127, 255, 256, 0x10000, 0x10005, ~0U};
constexpr unsigned kRounds = 8;

TEST(Hostile, PstRead) {
  for (const unsigned index : kSmall) Explore(PstRead, monitor::PstRead, index, Junk<PstEntry>());
}
TEST(Hostile, PstWrite) {
  for (const unsigned index : kSmall) {
    for (unsigned flags = 0; flags < 8; ++flags) {
      auto entry = Junk<PstEntry>();
      entry.tag = flags & 1;
      entry.force = flags & 2;
      entry.used = flags & 4;
      Explore(PstWrite, monitor::PstWrite, index, entry);
    }
  }
}
TEST(Hostile, PstDelete) {
  for (const unsigned index : kSmall) Explore(PstDelete, monitor::PstDelete, index);
}
TEST(Hostile, PstClear) {
  for (const unsigned index : kSmall) Explore(PstClear, monitor::PstClear, index);
}
TEST(Hostile, PdrRead) {
  for (const unsigned index : kSlots) Explore(PdrRead, monitor::PdrRead, index, Junk<PdrEntry>());
}
TEST(Hostile, PdrWrite) {
  for (const unsigned index : kSlots) {
    for (const uint8_t pppoe : Bytes{0, 1, 2, 255}) {
      for (const uint8_t session : Bytes{0, 1, 2, 3, 4, 7, 255}) {
        Explore(PdrWrite, monitor::PdrWrite, index,
                PdrEntry{Junk<uint32_t>(), pppoe, session, Junk<uint8_t>()});
      }
    }
  }
}
TEST(Hostile, PdrDelete) {
  for (const unsigned index : kSlots) Explore(PdrDelete, monitor::PdrDelete, index);
}
TEST(Hostile, PxtRead) {
  for (const unsigned index : kSmall) Explore(PxtRead, monitor::PxtRead, index, Junk<PxtEntry>());
}
TEST(Hostile, PxtWrite) {
  for (const unsigned index : kSmall) {
    for (unsigned round = 0; round < kRounds; ++round) {
      auto entry = Junk<PxtEntry>();
      if (round == 0) entry = PxtEntry{};
      entry.port = static_cast<uint8_t>(round);
      Explore(PxtWrite, monitor::PxtWrite, index, entry);
    }
    for (uint8_t PxtEntry::*flag :
         {&PxtEntry::internalForce, &PxtEntry::internalTag, &PxtEntry::internalUsed,
          &PxtEntry::externalForce, &PxtEntry::externalTag, &PxtEntry::externalUsed}) {
      PxtEntry entry{};
      entry.*flag = 2;
      Explore(PxtWrite, monitor::PxtWrite, index, entry);
    }
  }
}
TEST(Hostile, PxtDelete) {
  for (const unsigned index : kSmall) Explore(PxtDelete, monitor::PxtDelete, index);
}
TEST(Hostile, PxtSetUsed) {
  for (const unsigned index : kSmall) {
    for (const uint8_t internal : Bytes{0, 1, 2}) {
      for (const uint8_t external : Bytes{0, 1, 128}) {
        Explore(PxtSetUsed, monitor::PxtSetUsed, index, internal, external);
      }
    }
  }
}

}  // namespace
}  // namespace hostile
