#include "system/chip_select.h"

#include "core/irq_guard.h"
#include "system/chip_select_registers.h"

namespace monitor {
namespace {

/// The registers of a chip select; null where it has none.
struct CsRegisters {
  const Reg16* start;
  const Reg8* mask_size;
  const Reg8* wait;
};

constexpr CsRegisters kCsRegisters[] = {
    {&kCs0Start, &kCs0MaskSize, nullptr},
    {&kCs1Start, &kCs1MaskSize, nullptr},
    {nullptr, nullptr, nullptr},
    {&kCs3Start, &kCs3MaskSize, &kCs3Wait},
    {&kCs4Start, &kCs4MaskSize, &kCs4Wait},
    {&kCs5Start, &kCs5MaskSize, &kCs5Wait},
};

constexpr unsigned kNoSuchCs = 2;
constexpr unsigned kLongest = 15;  ///< Mask size and wait.

constexpr bool CsExists(unsigned number) { return number <= kCsAlternative && number != kNoSuchCs; }

}  // namespace

DriverStatus CsRead(unsigned number, ChipSelect& cs) {
  if (!CsExists(number)) return DriverStatus::kRefused;
  if (number == kCsAlternative) {
    cs.start = ReadHalves(kCsAlternativeStart);
    return DriverStatus::kOk;
  }
  const CsRegisters& registers = kCsRegisters[number];
  cs.start = Read(*registers.start);
  cs.maskSize = kCsMaskSize.Get(Read(*registers.mask_size));
  if (registers.wait != nullptr) cs.wait = kCsWait.Get(Read(*registers.wait));
  return DriverStatus::kOk;
}

DriverStatus CsWrite(unsigned number, const ChipSelect& cs) {
  if (cs.maskSize > kLongest || cs.wait > kLongest || !CsExists(number)) {
    return DriverStatus::kRefused;
  }
  if (number == kCsAlternative) {
    Write(kCsAlternativeStart, cs.start);
    return DriverStatus::kOk;
  }
  const CsRegisters& registers = kCsRegisters[number];
  IrqGuard lock;
  Write(*registers.start, cs.start);
  Write(*registers.mask_size, cs.maskSize);
  if (registers.wait != nullptr) Write(*registers.wait, cs.wait);
  return DriverStatus::kOk;
}

DriverStatus SdramTypeRead(SdramType& type) {
  const std::uint8_t value = Read(kSdramType);
  type.chipSelect = kSdramChipSelect.Get(value);
  type.column = kSdramColumn.Get(value);
  type.row = kSdramRow.Get(value);
  return DriverStatus::kOk;
}

DriverStatus SdramTypeWrite(const SdramType& type) {
  if (type.chipSelect > 1 || type.column > 1 || type.row > 2) return DriverStatus::kRefused;
  IrqGuard lock;
  Write(kSdramType,
        static_cast<std::uint8_t>(kSdramChipSelect.Put(type.chipSelect) |
                                  kSdramColumn.Put(type.column) | kSdramRow.Put(type.row)));
  return DriverStatus::kOk;
}

namespace {

constexpr char kWriteFailed[] = "CS Write failed\n\r";

constexpr std::array<Keyword, 2> kPlainWords{{{"0", 0}, {"1", 1}}};
constexpr std::array<Keyword, 3> kWaitWords{{{"3", 3}, {"4", 4}, {"5", 5}}};

// The printers are only given numbers that exist, so their reads do not fail.

int ShowPlain(unsigned number) {
  ChipSelect cs{};
  (void)CsRead(number, cs);
  Print("CS%d START: %4x\t", number, cs.start);
  Print("CS%d MASKSIZE: %4x\n\r", number, cs.maskSize);
  return kDone;
}

int ShowWithWait(unsigned number) {
  ChipSelect cs{};
  (void)CsRead(number, cs);
  Print("CS%d START: %4x\t", number, cs.start);
  Print("CS%d MASKSIZE: %4x\t", number, cs.maskSize);
  Print("CS%d WAIT: %4x\n\r", number, cs.wait);
  return kDone;
}

int ShowAlternative() {
  ChipSelect cs{};
  (void)CsRead(kCsAlternative, cs);
  Print("ALTERNATIVE START: %4x\n\r", cs.start);
  return kDone;
}

/// 0|a|1|3|4|5: only the first character of the word counts.
int Show(ArgVector argv) {
  const char first[] = {argv[1][0], '\0'};
  std::uint8_t number;
  if (ParseKeyword(first, kPlainWords, number)) return ShowPlain(number);
  if (ParseKeyword(first, kWaitWords, number)) return ShowWithWait(number);
  return WordIs(first, "A") ? ShowAlternative() : kUsage;
}

/// a = <start>
int SetAlternative(ArgVector argv) {
  ChipSelect cs{};
  if (!WordIs(argv[1], "A") || !WordIs(argv[2], "=") || !ParseHex16(argv[3], cs.start)) {
    return kUsage;
  }
  if (Failed(CsWrite(kCsAlternative, cs))) return Fail(kWriteFailed);
  return ShowAlternative();
}

/// 0|1 = <start> <masksize>
int SetPlain(ArgVector argv) {
  std::uint8_t number;
  ChipSelect cs{};
  if (!ParseKeyword(argv[1], kPlainWords, number) || !WordIs(argv[2], "=") ||
      !ParseHex16(argv[3], cs.start) || !ParseHex8(argv[4], cs.maskSize)) {
    return kUsage;
  }
  if (Failed(CsWrite(number, cs))) return Fail(kWriteFailed);
  return ShowPlain(number);
}

/// 3|4|5 = <start> <masksize> <wait>
int SetWithWait(ArgVector argv) {
  std::uint8_t number;
  ChipSelect cs{};
  if (!ParseKeyword(argv[1], kWaitWords, number) || !WordIs(argv[2], "=") ||
      !ParseHex16(argv[3], cs.start) || !ParseHex8(argv[4], cs.maskSize) ||
      !ParseHex8(argv[5], cs.wait)) {
    return kUsage;
  }
  if (Failed(CsWrite(number, cs))) return Fail(kWriteFailed);
  return ShowWithWait(number);
}

// What code 0 means in each field of the SDRAM type.
constexpr unsigned kFirstChipSelect = 1;
constexpr unsigned kFirstColumn = 8;
constexpr unsigned kFirstRow = 11;

/// Parses a number from `first` to `last` into its code, 0 for `first`.
bool ParseCode(const char* word, unsigned first, unsigned last, std::uint8_t& code) {
  std::uint8_t value;
  if (!ParseHex8(word, value) || value < first || value > last) return false;
  code = static_cast<std::uint8_t>(value - first);
  return true;
}

int PrintSdramType(const SdramType& type) {
  Print("CS: %2x\t", type.chipSelect + kFirstChipSelect);
  Print("COLUMN: %2x\t", type.column + kFirstColumn);
  Print("ROW: %2x\n\r", type.row + kFirstRow);
  return kDone;
}

int ShowSdramType() {
  SdramType type;
  SdramTypeRead(type);
  return PrintSdramType(type);
}

/// = <chip selects> <column bits> <row bits>: shows what was typed, not what reads back.
int SetSdramType(ArgVector argv) {
  SdramType type;
  if (!WordIs(argv[1], "=") || !ParseCode(argv[2], kFirstChipSelect, 2, type.chipSelect) ||
      !ParseCode(argv[3], kFirstColumn, 9, type.column) ||
      !ParseCode(argv[4], kFirstRow, 13, type.row)) {
    return kUsage;
  }
  if (Failed(SdramTypeWrite(type))) return Fail("SDRAM WriteType failed\n\r");
  return PrintSdramType(type);
}

}  // namespace

int CsCommand(int argc, ArgVector argv) {
  switch (argc) {
    case 2:
      return Show(argv);
    case 4:
      return SetAlternative(argv);
    case 5:
      return SetPlain(argv);
    case 6:
      return SetWithWait(argv);
    default:
      return kUsage;
  }
}

int SdramTypeCommand(int argc, ArgVector argv) {
  switch (argc) {
    case 1:
      return ShowSdramType();
    case 5:
      return SetSdramType(argv);
    default:
      return kUsage;
  }
}

}  // namespace monitor
