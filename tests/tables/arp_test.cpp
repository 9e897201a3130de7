#include "tables/arp.h"

#include <gtest/gtest.h>

#include "mac/packet_service.h"
#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

constexpr ArpEntry kEntry{
    .ip = 0x0A000002, .mac = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55}, .valid = 0};

TEST(Arp, ReadStoresTheSlotPulsesTheEngineAndLoadsTheEntry) {
  ScriptedBus bus(R"(
    w8  063c 3f
    r8  063b a3        # ready
    r8  063b fb
    w8  063b f6        # (fb OR 04) AND f6
    r8  063b f6
    w8  063b f2        # start cleared
    r8  063b f2 x3     # not done
    r8  063b f3
    r32 0630 0a000002
    r8  0634 00
    r8  0635 11
    r8  0636 22
    r8  0637 33
    r8  0638 44
    r8  0639 55
    r8  063d a5        # valid; junk above
  )");
  ArpEntry entry{};
  EXPECT_EQ(ArpRead(0x3F, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.ip, 0x0A000002U);
  EXPECT_EQ(entry.mac, (MacAddress{0x00, 0x11, 0x22, 0x33, 0x44, 0x55}));
  EXPECT_EQ(entry.valid, 1);
}

TEST(Arp, OnlyBit0TellsWhetherAnEntryIsValid) {
  ScriptedBus bus(R"(
    w8  063c 00
    r8  063b 03
    r8  063b 40
    w8  063b 44
    r8  063b 44
    w8  063b 40
    r8  063b 01
    r32 0630 00000000
    r8  0634 00
    r8  0635 00
    r8  0636 00
    r8  0637 00
    r8  0638 00
    r8  0639 00
    r8  063d fe
  )");
  ArpEntry entry{};
  EXPECT_EQ(ArpRead(0, entry), DriverStatus::kOk);
  EXPECT_EQ(entry.valid, 0);
}

TEST(Arp, ABusyEngineStopsAReadAfterTheSlot) {
  for (const char* const command : {"00", "01", "02", "fc"}) {
    const std::string transcript = std::string("w8 063c 05\n r8 063b ") + command;
    ScriptedBus bus(transcript.c_str());
    ArpEntry entry{};
    EXPECT_EQ(ArpRead(5, entry), DriverStatus::kNotReady);
  }
}

TEST(Arp, SlotsAbove63AreRefusedUntouched) {
  ScriptedBus bus("");
  ArpEntry entry = kEntry;
  for (const unsigned index : {64U, 0x100U, 0xFFFFU, 0x10040U}) {
    EXPECT_EQ(ArpRead(index, entry), DriverStatus::kRefused);
    EXPECT_EQ(ArpWrite(index, entry), DriverStatus::kRefused);
    EXPECT_EQ(ArpDelete(index), DriverStatus::kRefused);
  }
}

TEST(Arp, OnlyTheLow16BitsOfASlotNumberCount) {
  ScriptedBus bus("w8 063c 05\n r8 063b 00");
  ArpEntry entry{};
  EXPECT_EQ(ArpRead(0x10005, entry), DriverStatus::kNotReady);
}

TEST(Arp, WriteReleasesTheLockBeforeTheWait) {
  ScriptedBus bus(R"(
    lock
    w8  063c 05
    w8  063d 01
    w32 0630 0a000002
    w8  0634 00
    w8  0635 11
    w8  0636 22
    w8  0637 33
    w8  0638 44
    w8  0639 55
    r8  063b a7
    r8  063b b3
    w8  063b bd        # (b3 OR 0c) AND fd
    r8  063b bd
    w8  063b b9
    unlock
    r8  063b b9
    r8  063b ba
  )");
  EXPECT_EQ(ArpWrite(5, kEntry), DriverStatus::kOk);
}

TEST(Arp, ABusyEngineStopsAWriteWithTheLockReleased) {
  ScriptedBus bus(R"(
    lock
    w8  063c 05
    w8  063d 01
    w32 0630 0a000002
    w8  0634 00
    w8  0635 11
    w8  0636 22
    w8  0637 33
    w8  0638 44
    w8  0639 55
    r8  063b 01
    unlock
  )");
  EXPECT_EQ(ArpWrite(5, kEntry), DriverStatus::kNotReady);
}

TEST(Arp, DeleteReadsTheSlotThenClearsItsValidBitWithoutSelectingItAgain) {
  ScriptedBus bus(R"(
    w8  063c 09
    r8  063b 03
    r8  063b 13
    w8  063b 16
    r8  063b 16
    w8  063b 12
    r8  063b 13
    lock
    r8  063d a5
    w8  063d a4
    r8  063b 03
    r8  063b 13
    w8  063b 1d
    r8  063b 1d
    w8  063b 19
    unlock
    r8  063b 03
  )");
  EXPECT_EQ(ArpDelete(9), DriverStatus::kOk);
}

TEST(Arp, ADeleteMayFindTheEngineBusyTwice) {
  {
    ScriptedBus bus("w8 063c 09\n r8 063b 02");
    EXPECT_EQ(ArpDelete(9), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    w8  063c 09
    r8  063b 03
    r8  063b 40
    w8  063b 44
    r8  063b 44
    w8  063b 40
    r8  063b 01
    lock
    r8  063d 01
    w8  063d 00
    r8  063b 01        # the read is done, writes are not ready
    unlock
  )");
  EXPECT_EQ(ArpDelete(9), DriverStatus::kNotReady);
}

TEST(Arp, ReferencesAreReadWithoutASlotAfterOneReadyCheck) {
  ScriptedBus bus(R"(
    r8  063b 03
    r8  063b a3
    w8  063b a6
    r8  063b a6
    w8  063b a2
    r8  063b a3
    r8  0640 80
    r8  0641 01
    r8  0642 02
    r8  0643 03
    r8  0644 04
    r8  0645 05
    r8  0646 06
    r8  0647 07
  )");
  EntryMap map{};
  EXPECT_EQ(ArpReadReference(map), DriverStatus::kOk);
  EXPECT_EQ(map, (EntryMap{0x80, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(Arp, ReferencesAreClearedByAWriteStep) {
  ScriptedBus bus(R"(
    lock
    w8  0640 80
    w8  0641 01
    w8  0642 02
    w8  0643 03
    w8  0644 04
    w8  0645 05
    w8  0646 06
    w8  0647 07
    r8  063b 03
    r8  063b a3
    w8  063b ad
    r8  063b ad
    w8  063b a9
    unlock
    r8  063b 02
  )");
  EXPECT_EQ(ArpClearReference({0x80, 1, 2, 3, 4, 5, 6, 7}), DriverStatus::kOk);
}

TEST(Arp, ABusyEngineStopsTheReferenceSteps) {
  {
    ScriptedBus bus("r8 063b fe");
    EntryMap map{};
    EXPECT_EQ(ArpReadReference(map), DriverStatus::kNotReady);
  }
  ScriptedBus bus(R"(
    lock
    w8  0640 00
    w8  0641 00
    w8  0642 00
    w8  0643 00
    w8  0644 00
    w8  0645 00
    w8  0646 00
    w8  0647 00
    r8  063b fd
    unlock
  )");
  EXPECT_EQ(ArpClearReference({}), DriverStatus::kNotReady);
}

TEST(Arp, TheFilterIsBit7OfTheFilterByteAndNothingElse) {
  ScriptedBus bus(R"(
    r8 0105 80
    r8 0105 7f
    lock
    r8 0105 25
    w8 0105 a5
    unlock
    lock
    r8 0105 a5
    w8 0105 25
    unlock
  )");
  std::uint8_t on = 9;
  ArpReadFilter(on);
  EXPECT_EQ(on, 1);
  ArpReadFilter(on);
  EXPECT_EQ(on, 0);
  ArpWriteFilter(1);
  ArpWriteFilter(0);
}

TEST(Arp, AutoSwitchesTheReplyOnWithoutABusAccess) {
  ScriptedBus bus("");
  for (const char* const line : {"arp auto", "arp auto 1 2 3 4 5 6"}) {
    ArpAutoReply = 0;
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, kDone);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(ArpAutoReply, 1);
  }
  EXPECT_EQ(RunLine("arp autos").result, kUsage);
  ArpAutoReply = 0;
}

TEST(Arp, EveryFormHasItsTextWhenTheEngineIsBusyForItsSecondStep) {
  struct Case {
    const char* line;
    std::string first;
    const char* second;
    const char* output;
  };
  const std::string pulse_write = R"(
    r8  063b 03
    r8  063b 40
    w8  063b 4c
    r8  063b 4c
    w8  063b 48
    unlock
    r8  063b 03
  )";
  const std::string write_entry = R"(
    lock
    w8  063c 05
    w8  063d 01
    w32 0630 0a000002
    w8  0634 00
    w8  0635 11
    w8  0636 22
    w8  0637 33
    w8  0638 44
    w8  0639 55
  )" + pulse_write;
  const std::string delete_entry = R"(
    w8  063c 05
    r8  063b 03
    r8  063b 40
    w8  063b 44
    r8  063b 44
    w8  063b 40
    r8  063b 03
    lock
    r8  063d 01
    w8  063d 00
  )" + pulse_write;
  const std::string clear_all = R"(
    lock
    w8  0640 ff
    w8  0641 ff
    w8  0642 ff
    w8  0643 ff
    w8  0644 ff
    w8  0645 ff
    w8  0646 ff
    w8  0647 ff
  )" + pulse_write;
  const std::string clear_typed = R"(
    lock
    w8  0640 00
    w8  0641 00
    w8  0642 00
    w8  0643 00
    w8  0644 00
    w8  0645 0a
    w8  0646 bc
    w8  0647 de
  )" + pulse_write;
  const std::string clear_5 = R"(
    lock
    w8  0640 00
    w8  0641 00
    w8  0642 00
    w8  0643 00
    w8  0644 00
    w8  0645 00
    w8  0646 00
    w8  0647 20
  )" + pulse_write;
  const char* const read_busy = "w8 063c 05\n r8 063b 02";
  const char* const map_busy = "r8 063b 02";
  const Case cases[] = {
      {"arp 5 = 10.0.0.2 001122334455", write_entry, read_busy, "ARP Read failed\n\r"},
      {"arp d 5", delete_entry, read_busy, "ARP Read failed\n\r"},
      {"arp r =", clear_all, map_busy, "ARP ReadReference failed\n\r"},
      {"arp r = abcde", clear_typed, map_busy, "ARP ReadReference failed\n\r"},
      {"arp r 5 =", clear_5, map_busy, "ARP ReadReference failed\n\r"},
  };
  for (const Case& c : cases) {
    const std::string transcript = c.first + c.second;
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome = RunLine(c.line);
    EXPECT_EQ(outcome.result, kFailed) << c.line;
    EXPECT_EQ(outcome.output, c.output) << c.line;
  }
}

TEST(Arp, BadWordsTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"arp 5 = 10.0.0.2 1", "arp d 5 1", "arp r 5 =", "arp r = 1", "arp f enable"},
                     {
                         "arp",
                         "arp g",
                         "arp 40",
                         "arp 100",
                         "arp 5 100",
                         "arp 5 =",
                         "arp 5 = 10.0.0.2",
                         "arp 40 = 10.0.0.2 1",
                         "arp 5 = 10.0.0 1",
                         "arp 5 = 10.0.0.2 0011223344556",
                         "arp 5 = 10.0.0.2 00:11:22:33:44:55",
                         "arp 5 6 10.0.0.2 1",
                         "arp 5 = 10.0.0.2 1 2",
                         "arp d",
                         "arp d 40",
                         "arp d 5 100",
                         "arp d 5 6 7",
                         "arp r 40",
                         "arp r 40 =",
                         "arp r 5 6",
                         "arp r = g",
                         "arp r = 00000000000000001",
                         "arp r = 5 6",
                         "arp f on",
                         "arp f enable 1",
                     });
}

}  // namespace
}  // namespace monitor
