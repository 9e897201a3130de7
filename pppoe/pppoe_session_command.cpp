#include "console/slot_range.h"
#include "pppoe/pppoe_session.h"

namespace monitor {
namespace {

constexpr char kReadFailed[] = "PST Read failed\n\r";

/// A form that does something to a range of entries and shows each of them.
struct RangeForm {
  DriverStatus (*operation)(unsigned index);
  unsigned end;  ///< The range ends quietly before this index.
  const char* failed;
};

/// A delete continues past the last entry, where the driver refuses.
constexpr RangeForm kDelete{PstDelete, 64, "PST Delete failed\n\r"};
constexpr RangeForm kClear{PstClear, kPstEntries, "PST Clear failed\n\r"};

bool ParseIndex(const char* word, std::uint8_t& index) {
  return ParseSlot(word, kPstEntries, index);
}

void PrintSwitch(const char* label, std::uint8_t on) {
  ConsolePuts(label);
  ConsolePuts(on != 0 ? "TRUE" : "FALSE");
}

/// d|c <index> [<number>]
int Change(int argc, ArgVector argv, const RangeForm& form) {
  std::uint8_t first;
  std::uint8_t number = 1;
  if (argc < 3 || argc > 4 || !ParseIndex(argv[2], first)) return kUsage;
  if (argc == 4 && !ParseHex8(argv[3], number)) return kUsage;
  for (unsigned index = first; index < unsigned{first} + number; ++index) {
    if (index >= form.end) return kDone;
    PstEntry entry{};
    if (Failed(form.operation(index))) return Fail(form.failed);
    if (Failed(PstRead(index, entry))) return Fail(kReadFailed);
    PstPrint(entry, index);
  }
  return kDone;
}

/// <index> [<number>]: a range that runs past the last entry ends quietly.
int List(int argc, ArgVector argv, unsigned first) {
  std::uint8_t number = 1;
  if (argc == 3 && !ParseHex8(argv[2], number)) return kUsage;
  for (unsigned index = first; index < first + number; ++index) {
    if (index >= kPstEntries) return kDone;
    PstEntry entry{};
    if (Failed(PstRead(index, entry))) return Fail(kReadFailed);
    if (entry.valid != 0 || number == 1) PstPrint(entry, index);
  }
  return kDone;
}

/// <index> = <ip> <ses_id> <vlan_id> <ser_mac_addr> <force> <tag>
int WriteEntry(ArgVector argv, unsigned index) {
  PstEntry entry{};
  if (!WordIs(argv[2], "=") || !ParseIp(argv[3], entry.ip) ||
      !ParseHex(argv[4], entry.sessionId.data(), 4) || !ParseHex(argv[5], entry.vlanId.data(), 4) ||
      !ParseMac(argv[6], entry.serverMac) || !ParseHexDigit(argv[7], entry.force) ||
      !ParseHexDigit(argv[8], entry.tag)) {
    return kUsage;
  }
  if (Failed(PstWrite(index, entry))) return Fail("PST Write failed\n\r");
  if (Failed(PstRead(index, entry))) return Fail(kReadFailed);
  PstPrint(entry, index);
  return kDone;
}

}  // namespace

void PstPrint(const PstEntry& entry, unsigned index) {
  Print("INDEX: %2x\t", index);
  ConsolePuts(entry.valid != 0 ? "VALID" : "INVALID");
  Print("\n\rIP: %-15s ", IpText(entry.ip));
  Print("\tSESSION ID: %04x", IdToNumber(entry.sessionId));
  Print("\n\rVLAN ID: %04x\tSERVER MAC: ", IdToNumber(entry.vlanId));
  PrintMac(entry.serverMac);
  PrintSwitch("\n\rFORCE: ", entry.force);
  PrintSwitch("\tTAG: ", entry.tag);
  PrintSwitch("\tUSED: ", entry.used);
  ConsolePuts("\n\r\n\r");
}

int PstCommand(int argc, ArgVector argv) {
  if (argc < 2) return kUsage;
  if (WordIs(argv[1], "D")) return Change(argc, argv, kDelete);
  if (WordIs(argv[1], "C")) return Change(argc, argv, kClear);
  std::uint8_t index;
  if (!ParseIndex(argv[1], index)) return kUsage;
  if (argc <= 3) return List(argc, argv, index);
  return argc == 9 ? WriteEntry(argv, index) : kUsage;
}

}  // namespace monitor
