#include "console/print_map.h"
#include "console/slot_range.h"
#include "mac/packet_service.h"
#include "tables/arp.h"

namespace monitor {
namespace {

constexpr char kReadFailed[] = "ARP Read failed\n\r";
constexpr char kReadReferenceFailed[] = "ARP ReadReference failed\n\r";
constexpr char kClearReferenceFailed[] = "ARP ClearReference failed\n\r";
constexpr char kReferenceLabel[] = "REFERENCE BITS";
constexpr unsigned kMapDigits = 16;

/// f [enable|disable]
int Filter(int argc, ArgVector argv) {
  if (argc > 3) return kUsage;
  std::uint8_t on;
  if (argc == 3) {
    if (!ParseKeyword(argv[2], kEnableWords, on)) return kUsage;
    ArpWriteFilter(on);
  }
  ArpReadFilter(on);
  ConsolePuts(on != 0 ? "Filter ARP: ENABLE\n\r" : "Filter ARP: DISABLE\n\r");
  return kDone;
}

/// d <index> [<number>]
int Delete(int argc, ArgVector argv) {
  SlotRange range;
  if (!ParseSlotRange(argc - 2, argv + 2, kArpSlots, range)) return kUsage;
  for (unsigned slot = range.begin; slot < range.end; ++slot) {
    ArpEntry entry{};
    if (Failed(ArpDelete(slot))) return Fail("ARP Delete failed\n\r");
    if (Failed(ArpRead(slot, entry))) return Fail(kReadFailed);
    ArpEntryPrint(entry, slot);
  }
  return kDone;
}

int ShowReferences() {
  EntryMap map;
  if (Failed(ArpReadReference(map))) return Fail(kReadReferenceFailed);
  PrintEntryMap(kReferenceLabel, map);
  return kDone;
}

int ClearReferences(const EntryMap& map) {
  if (Failed(ArpClearReference(map))) return Fail(kClearReferenceFailed);
  return ShowReferences();
}

/// r = <clear>: sixteen digits, the first belonging to the last slots.
int ClearTypedReferences(const char* word) {
  EntryMap map;
  if (!ParseHex(word, map.data(), kMapDigits)) return kUsage;
  return ClearReferences(map);
}

int ShowReferenceOf(unsigned index) {
  EntryMap map;
  if (Failed(ArpReadReference(map))) return Fail(kReadReferenceFailed);
  Print("%s: ", kReferenceLabel);
  ConsolePuts(EntryBit(map, index) ? "1\n\r" : "0\n\r");
  return kDone;
}

int ClearReferenceOf(unsigned index) {
  if (Failed(ArpClearReference(OnlyEntry<8>(index)))) return Fail(kClearReferenceFailed);
  return ShowReferenceOf(index);
}

/// r [<index>] [=], r = <clear>: words after <index> = are ignored.
int Reference(int argc, ArgVector argv) {
  if (argc == 2) return ShowReferences();
  if (WordIs(argv[2], "=")) {
    if (argc == 3) return ClearReferences(kAllEntries);
    return argc == 4 ? ClearTypedReferences(argv[3]) : kUsage;
  }
  std::uint8_t index;
  if (!ParseSlot(argv[2], kArpSlots, index)) return kUsage;
  if (argc == 3) return ShowReferenceOf(index);
  return WordIs(argv[3], "=") ? ClearReferenceOf(index) : kUsage;
}

/// auto: the packet service answers ARP requests from now on.
int AutoReply() {
  ArpAutoReply = 1;
  return kDone;
}

/// <index> [<number>]
int List(int argc, ArgVector argv) {
  SlotRange range;
  if (!ParseSlotRange(argc - 1, argv + 1, kArpSlots, range)) return kUsage;
  for (unsigned slot = range.begin; slot < range.end; ++slot) {
    ArpEntry entry{};
    if (Failed(ArpRead(slot, entry))) return Fail(kReadFailed);
    if (entry.valid != 0 || range.single) ArpEntryPrint(entry, slot);
  }
  return kDone;
}

/// <index> = <IP addr> <MAC addr>
int WriteEntry(int argc, ArgVector argv) {
  std::uint8_t index;
  ArpEntry entry{};
  if (argc != 5 || !ParseSlot(argv[1], kArpSlots, index) || !WordIs(argv[2], "=") ||
      !ParseIp(argv[3], entry.ip) || !ParseMac(argv[4], entry.mac)) {
    return kUsage;
  }
  if (Failed(ArpWrite(index, entry))) return Fail("ARP Write failed\n\r");
  if (Failed(ArpRead(index, entry))) return Fail(kReadFailed);
  ArpEntryPrint(entry, index);
  return kDone;
}

}  // namespace

void ArpEntryPrint(const ArpEntry& entry, unsigned index) {
  Print("INDEX: %2x\t", index);
  ConsolePuts(entry.valid != 0 ? "VALID" : "INVALID");
  Print("\n\rIP: %-15s MAC: ", IpText(entry.ip));
  PrintMac(entry.mac);
  ConsolePuts("\n\r\n\r");
}

int ArpCommand(int argc, ArgVector argv) {
  if (argc < 2) return kUsage;
  const char* const form = argv[1];
  if (WordIs(form, "F")) return Filter(argc, argv);
  if (WordIs(form, "D")) return Delete(argc, argv);
  if (WordIs(form, "R")) return Reference(argc, argv);
  if (WordIs(form, "AUTO")) return AutoReply();
  return argc <= 3 ? List(argc, argv) : WriteEntry(argc, argv);
}

}  // namespace monitor
