#include "tables/nat.h"

#include <gtest/gtest.h>

#include "support/scripted_bus.h"

namespace monitor {
namespace {

constexpr NatTable kMain = NatTable::kMain;
constexpr NatTable kServer = NatTable::kServer;
constexpr NatAccess kByIndex = NatAccess::kByIndex;

constexpr NatEntry kEntry{.index = 0,
                          .sip = 0xC0A80102,
                          .sport = 0x0401,
                          .dip = 0x0A000041,
                          .dport = 0x0050,
                          .protocol = 1,
                          .nsport = 0x8001,
                          .nsip = 0x01020304,
                          .age = 0x0258,
                          .server = 0,
                          .valid = 0};

NatEntry EntryAt(std::uint8_t index) {
  NatEntry entry = kEntry;
  entry.index = index;
  return entry;
}

TEST(NatByIndex, ReadChecksTheResultThenLoadsTheEntry) {
  ScriptedBus bus(R"(
    w8  051a 4b
    w8  051b 00
    r8  051c a3        # ready
    r8  051c f3
    w8  051c ea        # (f3 OR 08) AND ee: bits 5, 6 and 7 stay
    r8  051c eb
    w8  051c e3        # start cleared
    r8  051c a2 x3     # not done
    r8  051c a7
    r8  051c a7        # result
    r32 0500 c0a80102
    r32 0508 0a000041
    r16 0504 0401
    r16 050c 0050
    r8  051b fd        # TCP, junk; not looked at for the server bit
    r16 0516 0258
    r8  051b 02        # server, loaded again
    r32 0548 01020304
    r16 0506 8001
    r8  052c 08        # slots 48 to 4f: 4b
  )");
  NatEntry entry = EntryAt(0x4B);
  entry.dip = entry.sip = 0;
  EXPECT_EQ(NatRead(kMain, kByIndex, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.index, 0x4B);
  EXPECT_EQ(entry.sip, 0xC0A80102U);
  EXPECT_EQ(entry.sport, 0x0401);
  EXPECT_EQ(entry.dip, 0x0A000041U);
  EXPECT_EQ(entry.dport, 0x0050);
  EXPECT_EQ(entry.protocol, 1);
  EXPECT_EQ(entry.nsip, 0x01020304U);
  EXPECT_EQ(entry.nsport, 0x8001);
  EXPECT_EQ(entry.age, 0x0258);
  EXPECT_EQ(entry.server, 1);
  EXPECT_EQ(entry.valid, 1);
}

TEST(NatByIndex, ReadOfTheServerTableSelectsItAndTakesItsValidBits) {
  ScriptedBus bus(R"(
    w8  051a 0f
    w8  051b 01
    r8  051c 03
    r8  051c 04
    w8  051c 0c
    r8  051c 0c
    w8  051c 04
    r8  051c 05
    r8  051c 04
    r32 0500 00000000
    r32 0508 00000000
    r16 0504 0000
    r16 050c 0000
    r8  051b fb
    r16 0516 0000
    r8  051b fd
    r32 0548 00000000
    r16 0506 0000
    r8  0544 7f        # slots 8 to f: f is not valid
  )");
  NatEntry entry = EntryAt(0x0F);
  entry.server = entry.valid = 9;
  EXPECT_EQ(NatRead(kServer, kByIndex, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.protocol, 0);
  EXPECT_EQ(entry.server, 0);
  EXPECT_EQ(entry.valid, 0);
}

TEST(NatByIndex, TheLastMainSlotHasTheLastValidBit) {
  ScriptedBus bus(R"(
    w8  051a ff
    w8  051b 00
    r8  051c 03
    r8  051c 04
    w8  051c 0c
    r8  051c 0c
    w8  051c 04
    r8  051c 05
    r8  051c 05
    r32 0500 00000000
    r32 0508 00000000
    r16 0504 0000
    r16 050c 0000
    r8  051b 00
    r16 0516 0000
    r8  051b 00
    r32 0548 00000000
    r16 0506 0000
    r8  0542 80
  )");
  NatEntry entry = EntryAt(0xFF);
  EXPECT_EQ(NatRead(kMain, kByIndex, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.valid, 1);
}

TEST(NatByIndex, ABusyEngineStopsAReadAfterTheControlByte) {
  for (const char* const command : {"00", "01", "02", "fc"}) {
    const std::string transcript = std::string("w8 051a 05\n w8 051b 00\n r8 051c ") + command;
    ScriptedBus bus(transcript.c_str());
    NatEntry entry = EntryAt(5);
    EXPECT_EQ(NatRead(kMain, kByIndex, entry), DriverStatus::kNotReady);
  }
}

TEST(NatByIndex, AReadWithoutSuccessLoadsNothing) {
  ScriptedBus bus(R"(
    w8  051a 05
    w8  051b 01
    r8  051c 07
    r8  051c 04
    w8  051c 0c
    r8  051c 0c
    w8  051c 04
    r8  051c 07        # done; the result is a separate load
    r8  051c 03
  )");
  NatEntry entry = EntryAt(5);
  EXPECT_EQ(NatRead(kServer, kByIndex, entry), DriverStatus::kRefused);
  EXPECT_EQ(entry.sip, 0xC0A80102U);
}

TEST(NatByIndex, ServerSlotsAbove15AreRefusedUntouched) {
  ScriptedBus bus("");
  for (const int index : {0x10, 0x1F, 0x80, 0xFF}) {
    NatEntry entry = EntryAt(static_cast<std::uint8_t>(index));
    EXPECT_EQ(NatRead(kServer, kByIndex, entry), DriverStatus::kRefused);
    EXPECT_EQ(NatWrite(kServer, kByIndex, entry), DriverStatus::kRefused);
    EXPECT_EQ(NatDelete(kServer, kByIndex, entry), DriverStatus::kRefused);
  }
}

TEST(NatByIndex, WriteReleasesTheLockBeforeTheWait) {
  ScriptedBus bus(R"(
    lock
    w8  051a 4b
    w32 0500 c0a80102
    w32 0508 0a000041
    w16 0504 0401
    w16 050c 0050
    w32 0548 01020304
    w16 0506 8001
    w16 0516 0258
    w8  051b 04        # TCP
    r8  051c a7
    r8  051c a3
    w8  051c f9        # (a3 OR 58) AND fd
    r8  051c f9
    w8  051c f1
    unlock
    r8  051c a1
    r8  051c a3
    r8  051c a7        # result
  )");
  NatEntry entry = EntryAt(0x4B);
  EXPECT_EQ(NatWrite(kMain, kByIndex, entry), DriverStatus::kOk);
}

TEST(NatByIndex, OnlyTheServerTableStoresTheServerBit) {
  constexpr char kRest[] = R"(
    r8  051c 03
    r8  051c 04
    w8  051c 5c
    r8  051c 5c
    w8  051c 54
    unlock
    r8  051c 03
    r8  051c 03        # refused by the engine
  )";
  constexpr char kData[] = R"(
    lock
    w8  051a 0f
    w32 0500 c0a80102
    w32 0508 0a000041
    w16 0504 0401
    w16 050c 0050
    w32 0548 01020304
    w16 0506 8001
    w16 0516 0258
  )";
  struct Case {
    NatTable table;
    std::uint8_t server;
    std::uint8_t protocol;
    const char* control;
  };
  for (const Case& c : {Case{kMain, 1, 1, "w8 051b 04"}, Case{kMain, 1, 0, "w8 051b 00"},
                        Case{kServer, 1, 1, "w8 051b 07"}, Case{kServer, 0, 1, "w8 051b 05"},
                        Case{kServer, 1, 0, "w8 051b 03"}, Case{kServer, 0, 2, "w8 051b 01"}}) {
    const std::string transcript = std::string(kData) + c.control + kRest;
    ScriptedBus bus(transcript.c_str());
    NatEntry entry = EntryAt(0x0F);
    entry.server = c.server;
    entry.protocol = c.protocol;
    EXPECT_EQ(NatWrite(c.table, kByIndex, entry), DriverStatus::kRefused);
  }
}

TEST(NatByIndex, ABusyEngineStopsAWriteWithTheLockReleased) {
  ScriptedBus bus(R"(
    lock
    w8  051a 05
    w32 0500 c0a80102
    w32 0508 0a000041
    w16 0504 0401
    w16 050c 0050
    w32 0548 01020304
    w16 0506 8001
    w16 0516 0258
    w8  051b 04
    r8  051c 05
    unlock
  )");
  NatEntry entry = EntryAt(5);
  EXPECT_EQ(NatWrite(kMain, kByIndex, entry), DriverStatus::kNotReady);
}

TEST(NatByIndex, DeleteClearsBit7FirstAndTestsTheResultWithoutAWait) {
  ScriptedBus bus(R"(
    w8  051a 4b
    w8  051b 00
    r8  051c a3
    r8  051c f3
    w8  051c 6a        # (f3 OR 08) AND 6e
    r8  051c eb
    w8  051c e3
    r8  051c a2
    r8  051c a3
    r8  051c a7        # result of the read
    r8  051c a3        # ready
    r8  051c f3
    w8  051c b9        # (f3 OR 18) AND bd: bit 7 stays
    r8  051c b9
    w8  051c b1
    r8  051c a5        # not done, but the result bit is set
  )");
  NatEntry entry = EntryAt(0x4B);
  EXPECT_EQ(NatDelete(kMain, kByIndex, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.index, 0x4B);
}

/// The read step of a delete of server slot 7.
constexpr char kReadServer7ForDelete[] = R"(
    w8  051a 07
    w8  051b 01
    r8  051c 03
    r8  051c 04
    w8  051c 0c
    r8  051c 0c
    w8  051c 04
    r8  051c 07
)";

TEST(NatByIndex, ADeleteMayFailAtEachOfItsSteps) {
  struct Case {
    const char* rest;
    DriverStatus status;
  };
  for (const Case& c : {
           Case{"r8 051c 03", DriverStatus::kRefused},                // the read failed
           Case{"r8 051c 07\n r8 051c 05", DriverStatus::kNotReady},  // busy after the read
           Case{"r8 051c 07\n r8 051c 07\n r8 051c 04\n w8 051c 1c\n r8 051c 1c\n w8 051c 14\n"
                "r8 051c 03",
                DriverStatus::kRefused},  // the delete failed
       }) {
    const std::string transcript = std::string(kReadServer7ForDelete) + c.rest;
    ScriptedBus bus(transcript.c_str());
    NatEntry entry = EntryAt(7);
    EXPECT_EQ(NatDelete(kServer, kByIndex, entry), c.status);
  }
  ScriptedBus bus("w8 051a 07\n w8 051b 01\n r8 051c 06");
  NatEntry entry = EntryAt(7);
  EXPECT_EQ(NatDelete(kServer, kByIndex, entry), DriverStatus::kNotReady);
}

}  // namespace
}  // namespace monitor
