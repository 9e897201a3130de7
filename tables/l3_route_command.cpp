#include "console/print_map.h"

#include "console/port_words.h"
#include "console/slot_range.h"
#include "tables/l3_route.h"

namespace monitor {
namespace {

constexpr char kCheckFailed[] = "L3 CheckOverflow failed\n\r";
constexpr char kClearFailed[] = "L3 ClearOverflow failed\n\r";

const char* PortText(std::uint8_t ports) {
  if ((ports & kPortWan) != 0) return "WAN ";
  if ((ports & kPortLan) != 0) return "LAN ";
  if ((ports & kPortDmz) != 0) return "DMZ ";
  if ((ports & kPortCpu) != 0) return "CPU ";
  return "    ";
}

bool ParseIndex(const char* word, std::uint8_t& index) {
  return ParseSlot(word, kRouteSlots, index);
}

void PrintCounter(unsigned index, std::uint32_t value) {
  Print("INDEX:%2x COUNTER:%8x\n\r", index, value);
}

/// f [enable|disable]
int Filter(int argc, ArgVector argv) {
  if (argc > 3) return kUsage;
  std::uint8_t on;
  if (argc == 3) {
    if (!ParseKeyword(argv[2], kEnableWords, on)) return kUsage;
    L3WriteFilter(on);
  }
  L3ReadFilter(on);
  ConsolePuts(on != 0 ? "Filter L3: ENABLE\n\r" : "Filter L3: DISABLE\n\r");
  return kDone;
}

/// d <index> [<number>]
int Delete(int argc, ArgVector argv) {
  SlotRange range;
  if (!ParseSlotRange(argc - 2, argv + 2, kRouteSlots, range)) return kUsage;
  for (unsigned slot = range.begin; slot < range.end; ++slot) {
    L3Route route{};
    if (Failed(L3Delete(slot))) return Fail("L3 Delete failed\n\r");
    if (Failed(L3Read(slot, route))) return Fail("L3 Read failed\n\r");
    if (route.valid != 0 || range.single) L3RoutePrint(route, slot);
  }
  return kDone;
}

int ShowCounter(unsigned index) {
  std::uint32_t value;
  if (Failed(L3ReadCounter(index, value))) return Fail("L3 ReadCounter failed\n\r");
  PrintCounter(index, value);
  return kDone;
}

int ShowAllCounters() {
  for (unsigned index = 0; index < kRouteSlots; ++index) {
    if (const int result = ShowCounter(index); result != kDone) return result;
  }
  return kDone;
}

/// c = <value>: sets the counter of slot 0 and reports failure either way.
int SetFirstCounter(ArgVector argv) {
  std::uint32_t value;
  if (!WordIs(argv[2], "=") || !ParseHex32(argv[3], value)) return kUsage;
  if (Failed(L3WriteCounter(0, value))) return Fail("SC Check Overflow failed\n\r");
  return Fail("L3 Write Counter failed\n\r");
}

/// c <index> = <value>
int SetCounter(ArgVector argv) {
  std::uint8_t index;
  std::uint32_t value;
  if (!ParseIndex(argv[2], index) || !WordIs(argv[3], "=") || !ParseHex32(argv[4], value)) {
    return kUsage;
  }
  if (Failed(L3WriteCounter(index, value))) return Fail("L3 Write Counter failed\n\r");
  if (Failed(L3ReadCounter(index, value))) return Fail("L3 Read Counter failed\n\r");
  PrintCounter(index, value);
  return kDone;
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
      return SetFirstCounter(argv);
    case 5:
      return SetCounter(argv);
    default:
      return kUsage;
  }
}

int ShowOverflow() {
  EntryMap map;
  if (Failed(L3CheckOverflow(map))) return Fail(kCheckFailed);
  PrintEntryMap("REFERENCE bits", map);
  return kDone;
}

/// o =: unlike the plain form, the bytes are padded with spaces.
int ClearAllOverflow() {
  EntryMap map;
  if (Failed(L3ClearOverflow(kAllEntries))) return Fail(kClearFailed);
  if (Failed(L3CheckOverflow(map))) return Fail(kCheckFailed);
  ConsolePuts(kEntryMapHeader);
  ConsolePuts("\n\rREFERENCE BITS: ");
  for (const std::uint8_t byte : map) Print("%2x", byte);
  return kDone;
}

/// o <index>: the answer has no line end.
int ShowOverflowOf(unsigned index) {
  EntryMap map;
  if (Failed(L3CheckOverflow(map))) return Fail(kCheckFailed);
  Print("INDEX %d:", index);
  ConsolePuts(EntryBit(map, index) ? "TRUE" : "FALSE");
  return kDone;
}

int ClearOverflowOf(unsigned index) {
  EntryMap map;
  if (Failed(L3ClearOverflow(OnlyEntry<8>(index)))) return Fail(kClearFailed);
  if (Failed(L3CheckOverflow(map))) return Fail(kCheckFailed);
  Print("INDEX %d:", index);
  ConsolePuts(EntryBit(map, index) ? "TRUE\n\r" : "FALSE\n\r");
  return kDone;
}

/// o [<index>] [=]
int Overflow(int argc, ArgVector argv) {
  std::uint8_t index;
  if (argc == 2) return ShowOverflow();
  if (argc == 3 && WordIs(argv[2], "=")) return ClearAllOverflow();
  if (argc > 4 || !ParseIndex(argv[2], index)) return kUsage;
  if (argc == 3) return ShowOverflowOf(index);
  return WordIs(argv[3], "=") ? ClearOverflowOf(index) : kUsage;
}

/// <index> [<number>]
int List(int argc, ArgVector argv) {
  SlotRange range;
  if (!ParseSlotRange(argc - 1, argv + 1, kRouteSlots, range)) return kUsage;
  for (unsigned slot = range.begin; slot < range.end; ++slot) {
    L3Route route{};
    if (Failed(L3Read(slot, route))) return Fail("L3 Read failed\n\r");
    if (route.valid != 0 || range.single) L3RoutePrint(route, slot);
  }
  return kDone;
}

/// <index> = <ip> <mask> <next> <port> <pppoe> <ses no> [direct] [wanmac]
int WriteRoute(int argc, ArgVector argv) {
  std::uint8_t index;
  L3Route route{};
  if (!ParseIndex(argv[1], index) || !WordIs(argv[2], "=") || argc < 9 || argc > 11) return kUsage;
  if (!ParseIp(argv[3], route.ip) || !ParseHex8(argv[4], route.mask) ||
      !ParseIp(argv[5], route.nextHop) || !ParseKeyword(argv[6], kPortWords, route.port) ||
      !ParseHexDigit(argv[7], route.pppoe) || !ParseHex8(argv[8], route.session)) {
    return kUsage;
  }
  for (int i = 9; i < argc; ++i) {
    if (WordIs(argv[i], "DIRECT")) {
      route.direct = 1;
    } else if (WordIs(argv[i], "WANMAC")) {
      route.wanMac = 1;
    } else {
      return kUsage;
    }
  }
  if (Failed(L3Write(index, route))) return Fail("L3 Write failed\n\r");
  if (Failed(L3Read(index, route))) return Fail("L3 Read failed\n\r");
  L3RoutePrint(route, index);
  return kDone;
}

}  // namespace

void L3RoutePrint(const L3Route& route, unsigned index) {
  Print("INDEX: %2x\t", index);
  ConsolePuts(route.valid != 0 ? "VALID\n\r" : "INVALID\n\r");
  Print("IP: %-15s MASK: %2x NEXT HOP: %-15s\n\r", IpText(route.ip), route.mask,
        IpText(route.nextHop));
  ConsolePuts("PORT: ");
  ConsolePuts(PortText(route.port));
  ConsolePuts(route.pppoe != 0 ? "\tPPPOE " : "\tIPOE ");
  Print("\tSESSION ID: %2x", route.session);
  ConsolePuts("\tDIRECT: ");
  ConsolePuts(route.direct != 0 ? "TRUE " : "FALSE ");
  ConsolePuts("\tWANMAC: ");
  ConsolePuts(route.wanMac != 0 ? "TRUE\n\r" : "FALSE\n\r");
  ConsolePuts("\n\r");
}

int L3Command(int argc, ArgVector argv) {
  if (argc < 2) return kUsage;
  const char* const form = argv[1];
  if (WordIs(form, "F")) return Filter(argc, argv);
  if (WordIs(form, "D")) return Delete(argc, argv);
  if (WordIs(form, "C")) return Counter(argc, argv);
  if (WordIs(form, "O")) return Overflow(argc, argv);
  return argc <= 3 ? List(argc, argv) : WriteRoute(argc, argv);
}

}  // namespace monitor
