#include "console/slot_range.h"
#include "pppoe/pdr.h"

namespace monitor {
namespace {

constexpr char kReadFailed[] = "PDR Read failed\n\r";

/// d <index> [<number>]
int Delete(int argc, ArgVector argv) {
  SlotRange range;
  if (!ParseSlotRange(argc - 2, argv + 2, kPdrEntries, range)) return kUsage;
  for (unsigned index = range.begin; index < range.end; ++index) {
    PdrEntry entry{};
    if (Failed(PdrDelete(index))) return Fail("PDR Delete failed\n\r");
    if (Failed(PdrRead(index, entry))) return Fail(kReadFailed);
    PdrPrint(entry, index);
  }
  return kDone;
}

/// <index> [<number>]
int List(int argc, ArgVector argv) {
  SlotRange range;
  if (!ParseSlotRange(argc - 1, argv + 1, kPdrEntries, range)) return kUsage;
  for (unsigned index = range.begin; index < range.end; ++index) {
    PdrEntry entry{};
    if (Failed(PdrRead(index, entry))) return Fail(kReadFailed);
    if (entry.valid != 0 || range.single) PdrPrint(entry, index);
  }
  return kDone;
}

/// <index> = <ip> <pppoe> <ses_no>
int WriteEntry(ArgVector argv) {
  std::uint8_t index;
  PdrEntry entry{};
  if (!ParseSlot(argv[1], kPdrEntries, index) || !WordIs(argv[2], "=") ||
      !ParseIp(argv[3], entry.ip) || !ParseHexDigit(argv[4], entry.pppoe) ||
      !ParseHexDigit(argv[5], entry.sessionNumber)) {
    return kUsage;
  }
  if (Failed(PdrWrite(index, entry))) return Fail("PDR Write failed\n\r");
  if (Failed(PdrRead(index, entry))) return Fail(kReadFailed);
  PdrPrint(entry, index);
  return kDone;
}

}  // namespace

void PdrPrint(const PdrEntry& entry, unsigned index) {
  Print("INDEX: %2x\t", index);
  ConsolePuts(entry.valid != 0 ? "VALID" : "INVALID");
  Print("\n\rIP: %-15s ", IpText(entry.ip));
  ConsolePuts(entry.pppoe != 0 ? "\tPPPOE" : "\tIPOE");
  Print("\tSESSION NO: %01x", entry.sessionNumber);
  ConsolePuts("\n\r\n\r");
}

int PdrCommand(int argc, ArgVector argv) {
  if (argc < 2) return kUsage;
  if (WordIs(argv[1], "D")) return Delete(argc, argv);
  if (argc <= 3) return List(argc, argv);
  return argc == 6 ? WriteEntry(argv) : kUsage;
}

}  // namespace monitor
