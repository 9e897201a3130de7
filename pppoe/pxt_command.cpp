#include "console/slot_range.h"
#include "pppoe/pxt.h"

namespace monitor {
namespace {

constexpr char kReadFailed[] = "PXT Read failed\n\r";

/// A delete continues past the last entry, where the driver refuses.
constexpr unsigned kDeleteEnd = 64;

bool ParseIndex(const char* word, std::uint8_t& index) {
  return ParseSlot(word, kPxtEntries, index);
}

bool ParseId(const char* word, RecordId& id) { return ParseHex(word, id.data(), 4); }

void PrintSwitch(const char* label, std::uint8_t on) {
  ConsolePuts(label);
  ConsolePuts(on != 0 ? "TRUE" : "FALSE");
}

int Show(unsigned index) {
  PxtEntry entry{};
  if (Failed(PxtRead(index, entry))) return Fail(kReadFailed);
  PxtPrint(entry, index);
  return kDone;
}

/// d <index> [<number>]
int Delete(int argc, ArgVector argv) {
  std::uint8_t first;
  std::uint8_t number = 1;
  if (argc < 3 || argc > 4 || !ParseIndex(argv[2], first)) return kUsage;
  if (argc == 4 && !ParseHex8(argv[3], number)) return kUsage;
  for (unsigned index = first; index < unsigned{first} + number; ++index) {
    if (index >= kDeleteEnd) return kDone;
    if (Failed(PxtDelete(index))) return Fail("PXT Delete failed\n\r");
    if (const int result = Show(index); result != kDone) return result;
  }
  return kDone;
}

/// c <index> = <int_used> <ext_used>
int SetUsed(int argc, ArgVector argv) {
  std::uint8_t index;
  std::uint8_t internal_used;
  std::uint8_t external_used;
  if (argc != 6 || !ParseIndex(argv[2], index) || !WordIs(argv[3], "=") ||
      !ParseHexDigit(argv[4], internal_used) || !ParseHexDigit(argv[5], external_used)) {
    return kUsage;
  }
  if (Failed(PxtSetUsed(index, internal_used, external_used))) return Fail("PXT Clear failed\n\r");
  return Show(index);
}

/// <index> [<number>]: a range that runs past the last entry ends quietly.
int List(int argc, ArgVector argv, unsigned first) {
  std::uint8_t number = 1;
  if (argc == 3 && !ParseHex8(argv[2], number)) return kUsage;
  for (unsigned index = first; index < first + number; ++index) {
    if (index >= kPxtEntries) return kDone;
    PxtEntry entry{};
    if (Failed(PxtRead(index, entry))) return Fail(kReadFailed);
    if (entry.valid != 0 || number == 1) PxtPrint(entry, index);
  }
  return kDone;
}

/// <index> = <int_mac_addr> <ext_mac_addr> <int_ses_id> <ext_ses_id> <int_vlan_id> <ext_vlan_id>
/// <int_force> <ext_force> <int_tag> <out_tag> <port>
int WriteEntry(ArgVector argv, unsigned index) {
  PxtEntry entry{};
  if (!WordIs(argv[2], "=") || !ParseMac(argv[3], entry.internalMac) ||
      !ParseMac(argv[4], entry.externalMac) || !ParseId(argv[5], entry.internalSessionId) ||
      !ParseId(argv[6], entry.externalSessionId) || !ParseId(argv[7], entry.internalVlanId) ||
      !ParseId(argv[8], entry.externalVlanId) || !ParseHexDigit(argv[9], entry.internalForce) ||
      !ParseHexDigit(argv[10], entry.externalForce) ||
      !ParseHexDigit(argv[11], entry.internalTag) || !ParseHexDigit(argv[12], entry.externalTag) ||
      !ParseHexDigit(argv[13], entry.port)) {
    return kUsage;
  }
  if (Failed(PxtWrite(index, entry))) return Fail("PXT Write failed\n\r");
  return Show(index);
}

}  // namespace

void PxtPrint(const PxtEntry& entry, unsigned index) {
  Print("INDEX: %2x\t", index);
  ConsolePuts(entry.valid != 0 ? "VALID" : "INVALID");
  ConsolePuts("\n\rINTERNAL MAC: ");
  PrintMac(entry.internalMac);
  ConsolePuts("\tEXTERNAL MAC: ");
  PrintMac(entry.externalMac);
  Print("\n\rINTERNAL SESSION ID: %04x", IdToNumber(entry.internalSessionId));
  Print("\n\rEXTERNAL SESSION ID: %04x", IdToNumber(entry.externalSessionId));
  Print("\n\rINTERNAL VLAN ID: %04x", IdToNumber(entry.internalVlanId));
  Print("\n\rEXTERNAL VLAN ID: %04x", IdToNumber(entry.externalVlanId));
  PrintSwitch("\n\rINTERNAL FORCE: ", entry.internalForce);
  PrintSwitch("\tINTERNAL TAG: ", entry.internalTag);
  PrintSwitch("\n\rEXTERNAL FORCE: ", entry.externalForce);
  PrintSwitch("\tEXTERNAL TAG: ", entry.externalTag);
  ConsolePuts(entry.port == kPxtPortDmz ? "\n\rPORT: DMZ" : "\n\rPORT: LAN");
  PrintSwitch("\tINTERNAL USED: ", entry.internalUsed);
  PrintSwitch("\tEXTERNAL USED: ", entry.externalUsed);
  ConsolePuts("\n\r\n\r");
}

int PxtCommand(int argc, ArgVector argv) {
  if (argc < 2) return kUsage;
  if (WordIs(argv[1], "D")) return Delete(argc, argv);
  if (WordIs(argv[1], "C")) return SetUsed(argc, argv);
  std::uint8_t index;
  if (!ParseIndex(argv[1], index)) return kUsage;
  if (argc <= 3) return List(argc, argv, index);
  return argc == 14 ? WriteEntry(argv, index) : kUsage;
}

}  // namespace monitor
