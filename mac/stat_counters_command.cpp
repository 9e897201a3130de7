#include "mac/stat_counters.h"

#include "console/port_words.h"

namespace monitor {
namespace {

constexpr char kCheckFailed[] = "SC CheckOverflow failed\n\r";

bool ParseCounter(const char* word, unsigned& index) {
  for (unsigned i = 0; i < kStatCounters; ++i) {
    if (!WordIs(word, StatCounterNames[i])) continue;
    index = i;
    return true;
  }
  return false;
}

/// Counters are printed two per line.
bool EndsLine(unsigned index) { return index % 2 != 0; }

bool BitOf(std::uint32_t mask, unsigned index) { return (mask >> index & 1) != 0; }

int ShowAll(std::uint8_t port) {
  StatCounterBlock block{};
  if (Failed(BatchReadStatCounters(port, block))) return Fail("SC BatchRead failed\n\r");
  for (unsigned i = 0; i < kStatCounters; ++i) {
    Print("%-20s : %8x      ", StatCounterNames[i], block[i]);
    if (EndsLine(i)) ConsolePuts("\n\r");
  }
  return kDone;
}

int ShowCounter(std::uint8_t port, const char* word) {
  unsigned index;
  std::uint32_t value;
  if (!ParseCounter(word, index)) return kUsage;
  if (Failed(ReadStatCounter(port, index, value))) return Fail("SC Read failed\n\r");
  Print("%-20s : %8x\n\r", StatCounterNames[index], value);
  return kDone;
}

/// <port> [<counter>]
int Show(int argc, ArgVector argv) {
  std::uint8_t port;
  if (argc > 3 || !ParseKeyword(argv[1], kMacPortWords, port)) return kUsage;
  return argc == 2 ? ShowAll(port) : ShowCounter(port, argv[2]);
}

/// c <port>
int Clear(int argc, ArgVector argv) {
  std::uint8_t port;
  if (argc != 3 || !ParseKeyword(argv[2], kMacPortWords, port)) return kUsage;
  if (Failed(ClearAllStatCounters(port))) return Fail("SC ClearAll failed\n\r");
  Print("%s port statistic counters clear\n\r", argv[2]);
  return kDone;
}

int ShowOverflow(std::uint8_t port) {
  std::uint32_t mask;
  if (Failed(CheckStatOverflow(port, mask))) return Fail(kCheckFailed);
  ConsolePuts("\n\rSTATISTICAL COUNTER OVERFLOW\n\r");
  for (unsigned i = 0; i < kStatCounters; ++i) {
    Print("%-20s: ", StatCounterNames[i]);
    ConsolePuts(BitOf(mask, i) ? "TRUE            " : "FALSE           ");
    if (EndsLine(i)) ConsolePuts("\n\r");
  }
  return kDone;
}

/// o <port> <counter>: the answer has no line end.
int ShowOverflowOf(std::uint8_t port, const char* word) {
  unsigned index;
  std::uint32_t mask;
  if (!ParseCounter(word, index)) return kUsage;
  if (Failed(CheckStatOverflow(port, mask))) return Fail(kCheckFailed);
  ConsolePuts("\n\rSTATISTICAL COUNTER OVERFLOW");
  Print("\n\r%s: ", StatCounterNames[index]);
  ConsolePuts(BitOf(mask, index) ? "TRUE" : "FALSE");
  return kDone;
}

int ClearOverflow(std::uint8_t port, std::uint32_t mask) {
  if (Failed(ClearStatOverflow(port, mask))) return Fail("SC ClearOverflow failed\n\r");
  return kDone;
}

/// o <port> [<counter>] [=]
int Overflow(int argc, ArgVector argv) {
  std::uint8_t port;
  unsigned index;
  if (argc < 3 || !ParseKeyword(argv[2], kMacPortWords, port)) return kUsage;
  switch (argc) {
    case 3:
      return ShowOverflow(port);
    case 4:
      if (WordIs(argv[3], "=")) return ClearOverflow(port, 0xFFFFFFFF);
      return ShowOverflowOf(port, argv[3]);
    case 5:
      if (!WordIs(argv[4], "=") || !ParseCounter(argv[3], index)) return kUsage;
      return ClearOverflow(port, std::uint32_t{1} << index);
    default:
      return kUsage;
  }
}

}  // namespace

int StatCountersCommand(int argc, ArgVector argv) {
  if (argc < 2) return kUsage;
  if (WordIs(argv[1], "C")) return Clear(argc, argv);
  if (WordIs(argv[1], "O")) return Overflow(argc, argv);
  return Show(argc, argv);
}

}  // namespace monitor
