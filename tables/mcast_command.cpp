#include "console/print_map.h"

#include "console/port_words.h"
#include "console/slot_range.h"
#include "tables/mcast.h"

namespace monitor {
namespace {

// The forms spell their failures differently.
constexpr char kReadFailed[] = "MCAST Read failed\n\r";
constexpr char kReadCounterFailed[] = "MCAST ReadCounter failed\n\r";
constexpr char kWriteCounterFailed[] = "MCAST WriteCounter failed\n\r";
constexpr char kCheckFailed[] = "MCAST CheckOverflow failed\n\r";
constexpr char kClearFailed[] = "MCAST ClearOverflow failed\n\r";
constexpr char kOverflowLabel[] = "REFERENCE BITS";

constexpr int kMostWriteWords = 8;

bool ParseIndex(const char* word, std::uint8_t& index) {
  return ParseSlot(word, kMcastSlots, index);
}

void PrintSettings(const McastSettings& settings) {
  ConsolePuts("MCAST Flood Control: ");
  ConsolePuts(settings.flood != 0 ? "ENABLE\n\r" : "DISABLE\n\r");
  ConsolePuts("Filter out multicast table missed packets: ");
  ConsolePuts(settings.filter != 0 ? "ENABLE\n\r" : "DISABLE\n\r");
}

/// Takes pairs of FLOOD or FILTER and 0 or 1 until the words end.
bool ParseSettings(int words, ArgVector word, McastSettings& settings) {
  for (int i = 0; i < words; i += 2) {
    std::uint8_t on;
    if (i + 1 == words || !ParseHexDigit(word[i + 1], on) || on > 1) return false;
    if (WordIs(word[i], "FLOOD")) {
      settings.flood = on;
    } else if (WordIs(word[i], "FILTER")) {
      settings.filter = on;
    } else {
      return false;
    }
  }
  return true;
}

/// f [flood 0|1] [filter 0|1]: as no register holds the filter, it shows only in the very
/// command that switches it on. The flood switch is read before the words are looked at.
int Filter(int argc, ArgVector argv) {
  McastSettings settings{};
  McastReadFlood(settings);
  if (argc > 2) {
    if (!ParseSettings(argc - 2, argv + 2, settings)) return kUsage;
    McastWriteFlood(settings);
    McastReadFlood(settings);
  }
  PrintSettings(settings);
  return kDone;
}

/// d <index> [<number>]
int Delete(int argc, ArgVector argv) {
  SlotRange range;
  if (!ParseSlotRange(argc - 2, argv + 2, kMcastSlots, range)) return kUsage;
  for (unsigned slot = range.begin; slot < range.end; ++slot) {
    McastEntry entry{};
    if (Failed(McastDelete(slot))) return Fail("MCAST Delete failed\n\r");
    if (Failed(McastRead(slot, entry))) return Fail(kReadFailed);
    McastEntryPrint(entry, slot);
  }
  return kDone;
}

int ShowCounter(unsigned index, const char* failure = kReadCounterFailed) {
  std::uint32_t value;
  if (Failed(McastReadCounter(index, value))) return Fail(failure);
  Print("INDEX:%2x COUNTER:%8x\n\r", index, value);
  return kDone;
}

int ShowAllCounters() {
  for (unsigned index = 0; index < kMcastSlots; ++index) {
    if (const int result = ShowCounter(index); result != kDone) return result;
  }
  return kDone;
}

/// c = <value>: every slot.
int SetAllCounters(ArgVector argv) {
  std::uint32_t value;
  if (!WordIs(argv[2], "=") || !ParseHex32(argv[3], value)) return kUsage;
  for (unsigned index = 0; index < kMcastSlots; ++index) {
    if (Failed(McastWriteCounter(index, value))) return Fail(kWriteCounterFailed);
    const int result = ShowCounter(index, "MCAST ReadCountet failed\n\r");
    if (result != kDone) return result;
  }
  return kDone;
}

/// c <index> = <value>
int SetCounter(ArgVector argv) {
  std::uint8_t index;
  std::uint32_t value;
  if (!ParseIndex(argv[2], index) || !WordIs(argv[3], "=") || !ParseHex32(argv[4], value)) {
    return kUsage;
  }
  if (Failed(McastWriteCounter(index, value))) return Fail(kWriteCounterFailed);
  return ShowCounter(index);
}

/// c [<index>] [= <value>]
int Counter(int argc, ArgVector argv) {
  std::uint8_t index;
  switch (argc) {
    case 2:
      return ShowAllCounters();
    case 3:
      return ParseIndex(argv[2], index) ? ShowCounter(index) : kUsage;
    case 4:
      return SetAllCounters(argv);
    case 5:
      return SetCounter(argv);
    default:
      return kUsage;
  }
}

int ShowOverflow(const char* failure) {
  EntryMap map;
  if (Failed(McastCheckOverflow(map))) return Fail(failure);
  PrintEntryMap(kOverflowLabel, map);
  return kDone;
}

int ClearAllOverflow() {
  if (Failed(McastClearOverflow(kAllEntries))) return Fail(kClearFailed);
  return ShowOverflow(kCheckFailed);
}

int ShowOverflowOf(unsigned index) {
  EntryMap map;
  if (Failed(McastCheckOverflow(map))) return Fail(kCheckFailed);
  Print("INDEX %d:", index);
  ConsolePuts(EntryBit(map, index) ? "TRUE\n\r" : "FALSE\n\r");
  return kDone;
}

int ClearOverflowOf(unsigned index) {
  if (Failed(McastClearOverflow(OnlyEntry<8>(index)))) return Fail(kClearFailed);
  return ShowOverflowOf(index);
}

/// o [<index>] [=]
int Overflow(int argc, ArgVector argv) {
  std::uint8_t index;
  if (argc == 2) return ShowOverflow("MCAST Checkoverflow failed\n\r");
  if (argc == 3 && WordIs(argv[2], "=")) return ClearAllOverflow();
  if (argc > 4 || !ParseIndex(argv[2], index)) return kUsage;
  if (argc == 3) return ShowOverflowOf(index);
  return WordIs(argv[3], "=") ? ClearOverflowOf(index) : kUsage;
}

/// <index> [<number>]
int List(int argc, ArgVector argv) {
  SlotRange range;
  if (!ParseSlotRange(argc - 1, argv + 1, kMcastSlots, range)) return kUsage;
  for (unsigned slot = range.begin; slot < range.end; ++slot) {
    McastEntry entry{};
    if (Failed(McastRead(slot, entry))) return Fail(kReadFailed);
    if (entry.valid != 0 || range.single) McastEntryPrint(entry, slot);
  }
  return kDone;
}

/// <index> = <ip> [lan] [wan] [dmz] [cpu]: without the "=" there is nothing to do.
int WriteEntry(int argc, ArgVector argv) {
  std::uint8_t index;
  McastEntry entry{};
  if (!ParseIndex(argv[1], index)) return kUsage;
  if (!WordIs(argv[2], "=")) return kDone;
  if (!ParseIp(argv[3], entry.ip) || argc > kMostWriteWords) return kUsage;
  for (int i = 4; i < argc; ++i) {
    std::uint8_t port;
    if (!ParseKeyword(argv[i], kPortWords, port)) return kUsage;
    entry.ports |= port;
  }
  if (Failed(McastWrite(index, entry))) return Fail("MCAST Write failed\n\r");
  if (Failed(McastRead(index, entry))) return Fail(kReadFailed);
  McastEntryPrint(entry, index);
  return kDone;
}

}  // namespace

void McastEntryPrint(const McastEntry& entry, unsigned index) {
  Print("INDEX: %2x\t", index);
  ConsolePuts(entry.valid != 0 ? "VALID" : "INVALID");
  Print("\n\rIP: %-15s PORT: ", IpText(entry.ip));
  if ((entry.ports & kPortWan) != 0) ConsolePuts("WAN   ");
  if ((entry.ports & kPortLan) != 0) ConsolePuts("LAN   ");
  if ((entry.ports & kPortDmz) != 0) ConsolePuts("DMZ   ");
  if ((entry.ports & kPortCpu) != 0) ConsolePuts("CPU");
  ConsolePuts("\n\r\n\r");
}

int McastCommand(int argc, ArgVector argv) {
  if (argc < 2) return kUsage;
  const char* const form = argv[1];
  if (WordIs(form, "F")) return Filter(argc, argv);
  if (WordIs(form, "D")) return Delete(argc, argv);
  if (WordIs(form, "C")) return Counter(argc, argv);
  if (WordIs(form, "O")) return Overflow(argc, argv);
  return argc <= 3 ? List(argc, argv) : WriteEntry(argc, argv);
}

}  // namespace monitor
