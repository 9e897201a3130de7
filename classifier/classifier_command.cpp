#include "classifier/classifier.h"
#include "classifier/rule_language.h"
#include "console/slot_range.h"

namespace monitor {
namespace {

constexpr char kReadFailed[] = "CLS Read failed\n\r";
// The listing of all counters has its own text.
constexpr char kListCounterFailed[] = "CLS ReadCounter failed\n\r";
constexpr char kReadCounterFailed[] = "CLS Read Counter failed\n\r";
constexpr char kWriteCounterFailed[] = "CLS Write Counter failed\n\r";
constexpr char kCheckFailed[] = "CLS CheckOverflow failed\n\r";
constexpr char kClearFailed[] = "CLS ClearOverflow failed\n\r";

constexpr unsigned kMapBytesShown = 8;

/// A number below 0x80.
bool ParseRuleIndex(const char* word, std::uint8_t& index) {
  return ParseSlot(word, kClsRules, index);
}

/// f [enable|disable]
int Filter(int argc, ArgVector argv) {
  if (argc > 3) return kUsage;
  std::uint8_t on;
  if (argc == 3) {
    if (!ParseKeyword(argv[2], kEnableWords, on)) return kUsage;
    ClsWriteFilter(on);
  }
  ClsReadFilter(on);
  ConsolePuts(on != 0 ? "Filter CLS: ENABLE\n\r" : "Filter CLS: DISABLE\n\r");
  return kDone;
}

/// d <index> [<number>]: a range that runs past the last rule fails there.
int Delete(int argc, ArgVector argv) {
  std::uint8_t index;
  std::uint8_t number = 1;
  if (argc < 3 || argc > 4 || !ParseRuleIndex(argv[2], index)) return kUsage;
  if (argc == 4 && !ParseHex8(argv[3], number)) return kUsage;
  for (unsigned i = 0; i < number; ++i) {
    if (Failed(ClsDelete(index + i))) return Fail("CLS Delete failed\n\r");
  }
  return kDone;
}

int ReadAndPrint(unsigned index, ClsRule& rule) {
  if (Failed(ClsRead(index, rule))) return Fail(kReadFailed);
  ClsRulePrint(rule, index);
  return kDone;
}

/// Reads and prints the rule to which `rule` links.
int FollowLink(ClsRule& rule) { return ReadAndPrint(rule.next & 0xFF, rule); }

/// l: the whole chain, but no more than 129 rules after the head, so that a cycle ends.
int ListWholeChain(ClsRule& rule) {
  constexpr unsigned kMostLinks = 129;
  for (unsigned i = 0; i < kMostLinks && rule.next != kClsNoNext; ++i) {
    if (const int result = FollowLink(rule); result != kDone) return result;
  }
  return kDone;
}

/// l <number>: what the usage row calls an index is a count. The end of the chain is not detected,
/// and a count of 0 wraps.
int ListLinks(std::uint8_t number, ClsRule& rule) {
  while (--number != 0) {
    if (const int result = FollowLink(rule); result != kDone) return result;
  }
  return kDone;
}

/// l [<number>]
int ListChain(int argc, ArgVector argv, ClsRule& rule) {
  std::uint8_t number = 0;
  if (argc > 3 || (argc == 3 && !ParseHex8(argv[2], number))) return kUsage;
  std::uint16_t head;
  if (Failed(ClsReadFirst(head))) return Fail("CLS ReadFirst failed\n\r");
  if (const int result = ReadAndPrint(head, rule); result != kDone) return result;
  return argc == 3 ? ListLinks(number, rule) : ListWholeChain(rule);
}

/// h = <index>
int SetHead(int argc, ArgVector argv) {
  std::uint8_t head;
  if (argc != 4 || !WordIs(argv[2], "=") || !ParseHex8(argv[3], head)) return kUsage;
  return Failed(ClsWriteFirst(head)) ? Fail("CLS WriteFirst failed\n\r") : kDone;
}

/// n <index> = <next>
int Relink(int argc, ArgVector argv) {
  std::uint8_t index;
  std::uint8_t next;
  if (argc != 5 || !ParseHex8(argv[2], index) || !WordIs(argv[3], "=") ||
      !ParseHex8(argv[4], next)) {
    return kUsage;
  }
  return Failed(ClsNext(index, next)) ? Fail("CLS Next failed\n\r") : kDone;
}

int ShowCounter(unsigned index, const char* failure) {
  std::uint32_t value;
  if (Failed(ClsReadCounter(index, value))) return Fail(failure);
  Print("COUNTER %2x: %8x\n\r", index, value);
  return kDone;
}

int ShowAllCounters() {
  for (unsigned index = 0; index < kClsRules; ++index) {
    if (const int result = ShowCounter(index, kListCounterFailed); result != kDone) return result;
  }
  return kDone;
}

int SetCounter(unsigned index, std::uint32_t value) {
  if (Failed(ClsWriteCounter(index, value))) return Fail(kWriteCounterFailed);
  return ShowCounter(index, kReadCounterFailed);
}

int SetAllCounters(std::uint32_t value) {
  for (unsigned index = 0; index < kClsRules; ++index) {
    if (const int result = SetCounter(index, value); result != kDone) return result;
  }
  return kDone;
}

/// c [<index>] [= <value>]
int Counter(int argc, ArgVector argv) {
  std::uint8_t index;
  std::uint32_t value;
  switch (argc) {
    case 2:
      return ShowAllCounters();
    case 3:
      return ParseRuleIndex(argv[2], index) ? ShowCounter(index, kReadCounterFailed) : kUsage;
    case 4:
      if (!WordIs(argv[2], "=") || !ParseHex32(argv[3], value)) return kUsage;
      return SetAllCounters(value);
    case 5:
      if (!ParseRuleIndex(argv[2], index) || !WordIs(argv[3], "=") || !ParseHex32(argv[4], value)) {
        return kUsage;
      }
      return SetCounter(index, value);
    default:
      return kUsage;
  }
}

/// Byte of the overflow map for a rule; rules below 0x38 are beyond the map's end.
constexpr unsigned OverflowByte(unsigned index) { return (kClsRules - 1 - index) / 8; }

constexpr unsigned OverflowBit(unsigned index) { return 1U << (index & 7); }

bool HasOverflowed(const ClsOverflowMap& map, unsigned index) {
  const unsigned byte = OverflowByte(index);
  return byte < map.size() && (map[byte] & OverflowBit(index)) != 0;
}

void PrintOverflowMap(const char* header, const ClsOverflowMap& map) {
  ConsolePuts(header);
  ConsolePuts("\n\rOVERFLOW BITS: ");
  for (unsigned i = 0; i < kMapBytesShown; ++i) Print("%2x", map[i]);
}

int ShowOverflow() {
  ClsOverflowMap map;
  if (Failed(ClsCheckOverflow(map))) return Fail(kCheckFailed);
  PrintOverflowMap("              7F<-..........->00", map);
  return kDone;
}

/// o =: all rules except those of the ninth byte. The header differs from that of the plain form.
int ClearAllOverflow() {
  ClsOverflowMap map{};
  for (unsigned i = 0; i < kMapBytesShown; ++i) map[i] = 0xFF;
  if (Failed(ClsClearOverflow(map))) return Fail(kClearFailed);
  if (Failed(ClsCheckOverflow(map))) return Fail(kCheckFailed);
  PrintOverflowMap("              3F<-..........->00", map);
  return kDone;
}

/// o <index>: a bad index is silently ignored.
int ShowOverflowOf(ArgVector argv) {
  std::uint8_t index;
  if (!ParseRuleIndex(argv[2], index)) return kDone;
  ClsOverflowMap map;
  if (Failed(ClsCheckOverflow(map))) return Fail(kCheckFailed);
  ConsolePuts("OVERFLOW BITS: ");
  ConsolePuts(HasOverflowed(map, index) ? "1\n\r" : "0\n\r");
  return kDone;
}

/// o <index> =: a bit that stays set is shown without a line end.
int ClearOverflowOf(ArgVector argv) {
  std::uint8_t index;
  if (!ParseRuleIndex(argv[2], index) || !WordIs(argv[3], "=")) return kUsage;
  ClsOverflowMap map{};
  if (OverflowByte(index) < map.size()) {
    map[OverflowByte(index)] = static_cast<std::uint8_t>(OverflowBit(index));
  }
  if (Failed(ClsClearOverflow(map))) return Fail(kClearFailed);
  if (Failed(ClsCheckOverflow(map))) return Fail(kCheckFailed);
  ConsolePuts("OVERFLOW BITS: ");
  ConsolePuts(HasOverflowed(map, index) ? "1" : "0\n\r");
  return kDone;
}

/// o [<index>] [=]: more words than that do nothing.
int Overflow(int argc, ArgVector argv) {
  switch (argc) {
    case 2:
      return ShowOverflow();
    case 3:
      return WordIs(argv[2], "=") ? ClearAllOverflow() : ShowOverflowOf(argv);
    case 4:
      return ClearOverflowOf(argv);
    default:
      return kDone;
  }
}

/// <index> [<number>]: a range that runs past the last rule fails there.
int List(int argc, ArgVector argv, ClsRule& rule) {
  std::uint8_t index;
  std::uint8_t number = 1;
  if (!ParseHex8(argv[1], index)) return kUsage;
  if (argc == 3 && !ParseHex8(argv[2], number)) return kUsage;
  for (unsigned i = 0; i < number; ++i) {
    if (Failed(ClsRead(index + i, rule))) return Fail(kReadFailed);
    if (rule.valid != 0 || number == 1) ClsRulePrint(rule, index + i);
  }
  return kDone;
}

/// <index> = <next> <counter> and keywords. What is read back shows copy-to-CPU as typed.
int WriteRule(int argc, ArgVector argv, ClsRule& rule) {
  constexpr int kFirstKeyword = 5;
  std::uint8_t index;
  std::uint8_t next;
  if (argc < kFirstKeyword || !ParseHex8(argv[1], index) || !WordIs(argv[2], "=") ||
      !ParseHex8(argv[3], next) || !ParseHex32(argv[4], rule.counter)) {
    return kUsage;
  }
  rule.next = next;
  rule.ingress = 1;
  rule.positive = 1;
  if (!ParseRuleKeywords(argc, argv, kFirstKeyword, rule)) return kUsage;
  if (Failed(ClsWrite(index, rule))) return Fail("CLS Write failed\n\r");
  return ReadAndPrint(index, rule);
}

}  // namespace

int ClsCommand(int argc, ArgVector argv) {
  if (argc < 2) return kUsage;
  ClsRule rule{};
  const char* const form = argv[1];
  if (WordIs(form, "F")) return Filter(argc, argv);
  if (WordIs(form, "D")) return Delete(argc, argv);
  if (WordIs(form, "L")) return ListChain(argc, argv, rule);
  if (WordIs(form, "H")) return SetHead(argc, argv);
  if (WordIs(form, "N")) return Relink(argc, argv);
  if (WordIs(form, "C")) return Counter(argc, argv);
  if (WordIs(form, "O")) return Overflow(argc, argv);
  return argc <= 3 ? List(argc, argv, rule) : WriteRule(argc, argv, rule);
}

}  // namespace monitor
