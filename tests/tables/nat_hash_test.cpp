// The NAT operations by hash: probe sequences, results, and where they find the engine busy.
#include <gtest/gtest.h>

#include <cstdio>

#include "support/scripted_bus.h"
#include "tables/nat.h"

namespace monitor {
namespace {

constexpr NatTable kMain = NatTable::kMain;
constexpr NatAccess kByHash = NatAccess::kByHash;

// Home slot 43: 41 XOR 82 is c3, and bit 7 is dropped. Its overflow group is c0 to df.
constexpr NatEntry kEntry{.index = 0xEE,
                          .sip = 0xC0A80102,
                          .sport = 0x0401,
                          .dip = 0x0A000041,
                          .dport = 0x0182,
                          .protocol = 0,
                          .nsport = 0x8001,
                          .nsip = 0x01020304,
                          .age = 0x0258,
                          .server = 1,
                          .valid = 0};

constexpr char kStoreEntry[] = R"(
    w32 0500 c0a80102
    w32 0508 0a000041
    w16 0504 0401
    w16 050c 0182
    w32 0548 01020304
    w16 0506 8001
    w16 0516 0258
    w8  051b 00        # main table, no server bit, UDP
)";

std::string Slot(unsigned slot) {
  char text[16];
  std::snprintf(text, sizeof(text), "w8 051a %02x\n", slot);
  return text;
}

/// A write step of one probe; the result bit tells whether the engine took the entry.
std::string WriteProbe(unsigned slot, bool taken) {
  return Slot(slot) + R"(
    r8  051c a3
    r8  051c a3
    w8  051c f9
    r8  051c f9
    w8  051c f1
    r8  051c a1
    r8  051c a3
  )" + (taken ? "r8 051c a7\n" : "r8 051c a3\n");
}

/// A read step of one probe that succeeds.
std::string ReadProbe(unsigned slot) {
  return Slot(slot) + R"(
    w8  051b 00
    r8  051c a7
    r8  051c b7
    w8  051c ae        # bit 7 stays
    r8  051c ae
    w8  051c a6
    r8  051c a6
    r8  051c a7
    r8  051c a7
  )";
}

TEST(NatHash, OnlyTheLowBytesOfTheKeyEnterIt) {
  EXPECT_EQ(NatHash(0x0A000041, 0x0182), 0x43U);
  EXPECT_EQ(NatHash(0xFFFFFF41, 0xFF82), 0x43U);
  EXPECT_EQ(NatHash(0x000000FF, 0x00FF), 0x00U);
  EXPECT_EQ(NatHash(0x000000FF, 0x0000), 0x7FU);
  EXPECT_EQ(NatHash(0x00000000, 0x0080), 0x00U);
}

TEST(NatHash, AWriteHoldsTheLockUntilItsSlotIsFound) {
  const std::string transcript =
      std::string("lock") + kStoreEntry + WriteProbe(0x43, true) + "unlock";
  ScriptedBus bus(transcript.c_str());
  NatEntry entry = kEntry;
  EXPECT_EQ(NatWrite(kMain, kByHash, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.index, 0x43);
}

TEST(NatHash, ARefusedWriteContinuesInTheOverflowGroupWithoutStoringTheEntryAgain) {
  const std::string transcript = std::string("lock") + kStoreEntry + WriteProbe(0x43, false) +
                                 WriteProbe(0xC0, false) + WriteProbe(0xC1, false) +
                                 WriteProbe(0xC2, true) + "unlock";
  ScriptedBus bus(transcript.c_str());
  NatEntry entry = kEntry;
  // The table is the main table whatever is requested.
  EXPECT_EQ(NatWrite(NatTable::kServer, kByHash, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.index, 0xC2);
}

TEST(NatHash, AWriteGivesUpAfter33Probes) {
  std::string transcript = std::string("lock") + kStoreEntry + WriteProbe(0x43, false);
  for (unsigned slot = 0xC0; slot <= 0xDF; ++slot) transcript += WriteProbe(slot, false);
  transcript += "unlock";
  ScriptedBus bus(transcript.c_str());
  NatEntry entry = kEntry;
  EXPECT_EQ(NatWrite(kMain, kByHash, entry), DriverStatus::kRefused);
  EXPECT_EQ(entry.index, 0xEE);
}

TEST(NatHash, ABusyEngineEndsAWriteAtAnyProbeWithTheLockReleased) {
  NatEntry entry = kEntry;
  {
    const std::string transcript =
        std::string("lock") + kStoreEntry + Slot(0x43) + "r8 051c 05\n unlock";
    ScriptedBus bus(transcript.c_str());
    EXPECT_EQ(NatWrite(kMain, kByHash, entry), DriverStatus::kNotReady);
  }
  const std::string transcript = std::string("lock") + kStoreEntry + WriteProbe(0x43, false) +
                                 Slot(0xC0) + "r8 051c 06\n unlock";
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(NatWrite(kMain, kByHash, entry), DriverStatus::kNotReady);
  EXPECT_EQ(entry.index, 0xEE);
}

TEST(NatHash, AReadLoadsAllRegistersAgainWhenItHasFoundTheSlot) {
  const std::string transcript = ReadProbe(0x43) + R"(
    r32 0508 0a000042  # another address: the port is not looked at
  )" + ReadProbe(0xC3) + R"(
    r32 0508 0a000041
    r16 050c 0082      # another port
  )" + ReadProbe(0xC3) + R"(
    r32 0508 0a000041
    r16 050c 0182
    r32 0500 00000001
    r32 0508 00000002
    r16 0504 0003
    r16 050c 0004
    r8  051b 04
    r16 0516 0005
    r8  051b 02
    r32 0548 00000006
    r16 0506 0007
    r8  053b 08        # slots c0 to c7: c3
  )";
  ScriptedBus bus(transcript.c_str());
  NatEntry entry = kEntry;
  EXPECT_EQ(NatRead(NatTable::kServer, kByHash, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.index, 0xC3);
  EXPECT_EQ(entry.sip, 1U);
  EXPECT_EQ(entry.dip, 2U);
  EXPECT_EQ(entry.sport, 3);
  EXPECT_EQ(entry.dport, 4);
  EXPECT_EQ(entry.protocol, 1);
  EXPECT_EQ(entry.age, 5);
  EXPECT_EQ(entry.server, 1);
  EXPECT_EQ(entry.nsip, 6U);
  EXPECT_EQ(entry.nsport, 7);
  EXPECT_EQ(entry.valid, 1);
}

TEST(NatHash, AReadLooksAtOneOverflowSlot32Times) {
  std::string transcript = ReadProbe(0x43) + "r32 0508 0a000042\n";
  for (int probe = 0; probe < 32; ++probe) transcript += ReadProbe(0xC3) + "r32 0508 0a000042\n";
  ScriptedBus bus(transcript.c_str());
  NatEntry entry = kEntry;
  EXPECT_EQ(NatRead(kMain, kByHash, entry), DriverStatus::kRefused);
  EXPECT_EQ(entry.index, 0xEE);
}

/// A read step that the engine ends without success.
constexpr char kReadFails[] = R"(
    w8  051b 00
    r8  051c a7
    r8  051c b7
    w8  051c ae
    r8  051c ae
    w8  051c a6
    r8  051c a7
    r8  051c a3
)";

TEST(NatHash, SearchesEndAtAReadWithoutSuccessOrABusyEngine) {
  struct Case {
    std::string transcript;
    DriverStatus status;
  };
  const std::string missed_home = ReadProbe(0x43) + "r32 0508 0a000042\n";
  for (const Case& c : {
           Case{Slot(0x43) + kReadFails, DriverStatus::kRefused},
           Case{Slot(0x43) + "w8 051b 00\n r8 051c 06", DriverStatus::kNotReady},
       }) {
    NatEntry entry = kEntry;
    {
      ScriptedBus bus(c.transcript.c_str());
      EXPECT_EQ(NatRead(kMain, kByHash, entry), c.status);
    }
    ScriptedBus bus(c.transcript.c_str());
    EXPECT_EQ(NatDelete(kMain, kByHash, entry), c.status);
  }
  NatEntry entry = kEntry;
  {
    const std::string transcript = missed_home + Slot(0xC3) + kReadFails;
    ScriptedBus bus(transcript.c_str());
    EXPECT_EQ(NatRead(kMain, kByHash, entry), DriverStatus::kRefused);
  }
  const std::string transcript = missed_home + Slot(0xC0) + "w8 051b 00\n r8 051c 05";
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(NatDelete(kMain, kByHash, entry), DriverStatus::kNotReady);
}

TEST(NatHash, ADeleteGoesThroughTheGroupAndWaitsForItsLastStep) {
  const std::string transcript = ReadProbe(0x43) + "r32 0508 0a000042\n" + ReadProbe(0xC0) +
                                 "r32 0508 0a000042\n" + ReadProbe(0xC1) + R"(
    r32 0508 0a000041
    r16 050c 0182
    r8  051c a7        # ready; the slot is not stored again
    r8  051c e7
    w8  051c bd        # (e7 OR 18) AND bd
    r8  051c bd
    w8  051c b5
    r8  051c a5 x2     # not done
    r8  051c a7
    r8  051c a7
  )";
  ScriptedBus bus(transcript.c_str());
  NatEntry entry = kEntry;
  EXPECT_EQ(NatDelete(NatTable::kServer, kByHash, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.index, 0xC1);
}

TEST(NatHash, ADeleteGivesUpAfter33Probes) {
  std::string transcript = ReadProbe(0x43) + "r32 0508 0a000042\n";
  for (unsigned slot = 0xC0; slot <= 0xDF; ++slot) {
    transcript += ReadProbe(slot) + "r32 0508 0a000042\n";
  }
  ScriptedBus bus(transcript.c_str());
  NatEntry entry = kEntry;
  EXPECT_EQ(NatDelete(kMain, kByHash, entry), DriverStatus::kRefused);
}

TEST(NatHash, ADeleteMayFailAfterItsSearch) {
  const std::string found = ReadProbe(0x43) + "r32 0508 0a000041\n r16 050c 0182\n";
  NatEntry entry = kEntry;
  {
    const std::string transcript = found + "r8 051c 06";
    ScriptedBus bus(transcript.c_str());
    EXPECT_EQ(NatDelete(kMain, kByHash, entry), DriverStatus::kNotReady);
  }
  const std::string transcript = found + R"(
    r8  051c 07
    r8  051c 04
    w8  051c 1c
    r8  051c 1c
    w8  051c 14
    r8  051c 07
    r8  051c 03
  )";
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(NatDelete(kMain, kByHash, entry), DriverStatus::kRefused);
}

}  // namespace
}  // namespace monitor
