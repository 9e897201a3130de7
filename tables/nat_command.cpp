#include "tables/nat.h"

namespace monitor {
namespace {

constexpr char kReadFailed[] = "NAT Read failed\n\r";
constexpr char kHashReadFailed[] = "NAT Hash Read failed\n\r";

/// Deletes reach only the first half of the server table.
constexpr unsigned kServerSlotsToDelete = 8;

constexpr std::array<Keyword, 2> kProtocolWords{{{"TCP", 1}, {"UDP", 0}}};

/// Words of an entry: from <sip> to <age>, and with a final [server].
constexpr int kEntryWords = 8;
constexpr int kEntryWordsWithServer = 9;

constexpr bool IsEntry(int words) { return words == kEntryWords || words == kEntryWordsWithServer; }

/// Consecutive slots. Unlike in the other tables, one that does not exist is a usage error, after
/// the slots before it have been processed.
struct NatRange {
  std::uint8_t index = 0;
  std::uint16_t number = 1;
};

/// <index> [<number>]: the number is used when there is more than one word.
bool ParseRange(int words, ArgVector word, NatRange& range) {
  return ParseHex8(word[0], range.index) && (words <= 1 || ParseHex16(word[1], range.number));
}

/// <sip> <sport> <dip> <dport> <proto> <nsip> <nsport> <age> [server]
bool ParseEntry(int words, ArgVector word, NatEntry& entry) {
  if (!ParseIp(word[0], entry.sip) || !ParseHex16(word[1], entry.sport) ||
      !ParseIp(word[2], entry.dip) || !ParseHex16(word[3], entry.dport) ||
      !ParseKeyword(word[4], kProtocolWords, entry.protocol) || !ParseIp(word[5], entry.nsip) ||
      !ParseHex16(word[6], entry.nsport) || !ParseHex16(word[7], entry.age)) {
    return false;
  }
  if (words == kEntryWords) return true;
  entry.server = 1;
  return WordIs(word[kEntryWords], "SERVER");
}

/// Reads the entry's slot back and prints what it holds.
int ShowWritten(NatTable table, NatEntry& entry, const char* failure) {
  if (Failed(NatRead(table, NatAccess::kByIndex, entry))) return Fail(failure);
  NatEntryPrint(entry);
  return kDone;
}

int ReadRange(NatTable table, const NatRange& range, unsigned slots) {
  for (unsigned slot = range.index; slot < unsigned{range.index} + range.number; ++slot) {
    if (slot >= slots) return kUsage;
    NatEntry entry{};
    entry.index = static_cast<std::uint8_t>(slot);
    if (Failed(NatRead(table, NatAccess::kByIndex, entry))) return Fail(kReadFailed);
    if (entry.valid != 0 || range.number == 1) NatEntryPrint(entry);
  }
  return kDone;
}

int DeleteRange(NatTable table, const NatRange& range, unsigned slots) {
  for (unsigned slot = range.index; slot < unsigned{range.index} + range.number; ++slot) {
    if (slot >= slots) return kUsage;
    NatEntry entry{};
    entry.index = static_cast<std::uint8_t>(slot);
    if (Failed(NatDelete(table, NatAccess::kByIndex, entry))) return Fail("NAT Delete failed\n\r");
    Print("DELETED ENTRY: %2x\n\r", slot);
  }
  return kDone;
}

/// <index> [<number>] or <index> = <entry>, in either table.
int ByIndex(NatTable table, unsigned slots, int words, ArgVector word) {
  if (words == 1 || words == 2) {
    NatRange range;
    return ParseRange(words, word, range) ? ReadRange(table, range, slots) : kUsage;
  }
  NatEntry entry{};
  const int entry_words = words - 2;
  if (!IsEntry(entry_words) || !ParseHex8(word[0], entry.index) || entry.index >= slots ||
      !WordIs(word[1], "=") || !ParseEntry(entry_words, word + 2, entry)) {
    return kUsage;
  }
  if (Failed(NatWrite(table, NatAccess::kByIndex, entry))) return Fail("NAT Write failed\n\r");
  return ShowWritten(table, entry, kReadFailed);
}

/// <dip> <dport>
bool ParseKey(ArgVector word, NatEntry& entry) {
  return ParseIp(word[0], entry.dip) && ParseHex16(word[1], entry.dport);
}

/// h <dip> <dport>
int ReadByHash(ArgVector argv) {
  NatEntry entry{};
  if (!ParseKey(argv + 2, entry)) return kUsage;
  if (Failed(NatRead(NatTable::kMain, NatAccess::kByHash, entry))) return Fail(kHashReadFailed);
  NatEntryPrint(entry);
  return kDone;
}

/// h <dip> <dport>, h = <entry>
int ByHash(int argc, ArgVector argv) {
  constexpr int kWordsBefore = 3;
  if (argc == 4) return ReadByHash(argv);
  NatEntry entry{};
  const int entry_words = argc - kWordsBefore;
  if (!IsEntry(entry_words) || !WordIs(argv[2], "=") ||
      !ParseEntry(entry_words, argv + kWordsBefore, entry)) {
    return kUsage;
  }
  if (Failed(NatWrite(NatTable::kMain, NatAccess::kByHash, entry))) {
    return Fail("NAT Hash Write failed\n\r");
  }
  return ShowWritten(NatTable::kMain, entry, kHashReadFailed);
}

/// d h <dip> <dport>: words are not counted; missing ones are taken from earlier lines.
int DeleteByHash(ArgVector argv) {
  NatEntry entry{};
  if (!ParseKey(argv + 3, entry)) return kUsage;
  if (Failed(NatDelete(NatTable::kMain, NatAccess::kByHash, entry))) {
    return Fail("NAT Hash Delete failed\n\r");
  }
  Print("DELETED ENTRY: %2x\n\r", entry.index);
  return kDone;
}

/// d [s] <index> [<number>]: d s alone takes the index that an earlier line left.
int Delete(int argc, ArgVector argv) {
  if (argc == 2) return kUsage;
  NatRange range;
  if (WordIs(argv[2], "S")) {
    if (argc > 5 || !ParseRange(argc - 3, argv + 3, range)) return kUsage;
    return DeleteRange(NatTable::kServer, range, kServerSlotsToDelete);
  }
  if (WordIs(argv[2], "H")) return DeleteByHash(argv);
  if (argc > 4 || !ParseRange(argc - 2, argv + 2, range)) return kUsage;
  return DeleteRange(NatTable::kMain, range, kNatSlots);
}

}  // namespace

void NatEntryPrint(const NatEntry& entry) {
  Print("INDEX: %2x\t", entry.index);
  ConsolePuts(entry.valid != 0 ? "VALID\n\r" : "INVALID\n\r");
  Print("SIP: %-15s\tSPORT: %4x\t", IpText(entry.sip), entry.sport);
  Print("DIP: %-15s\tDPORT: %4x\n\r", IpText(entry.dip), entry.dport);
  ConsolePuts("PROTOCOL: ");
  if (entry.protocol == 1) ConsolePuts("TCP\t");
  if (entry.protocol == 0) ConsolePuts("UDP\t");
  Print("NSIP: %-15s\tNSPORT: %4x\n\r", IpText(entry.nsip), entry.nsport);
  Print("AGE OUT: %4x\tINSIDESERVER: ", entry.age);
  ConsolePuts(entry.server != 0 ? "TRUE\n\r" : "FALSE\n\r");
  ConsolePuts("\n\r");
}

int NatCommand(int argc, ArgVector argv) {
  if (argc < 2) return kUsage;
  const char* const form = argv[1];
  if (WordIs(form, "S")) return ByIndex(NatTable::kServer, kNatServerSlots, argc - 2, argv + 2);
  if (WordIs(form, "H")) return ByHash(argc, argv);
  if (WordIs(form, "D")) return Delete(argc, argv);
  return ByIndex(NatTable::kMain, kNatSlots, argc - 1, argv + 1);
}

}  // namespace monitor
