#include "chip/system/chip_select.h"

#include "system/chip_select_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

constexpr Reg16 kStarts[] = {kCs0Start, kCs1Start, kCs3Start,
                             kCs4Start, kCs5Start, kCsAlternativeStart};
constexpr Reg8 kBytes[] = {kCs0MaskSize, kCs1MaskSize, kCs3MaskSize, kCs3Wait,  kCs4MaskSize,
                           kCs4Wait,     kCs5MaskSize, kCs5Wait,     kSdramType};

}  // namespace

ChipSelects::ChipSelects(RegisterFile& registers) : registers_(registers) {
  for (const Reg16 start : kStarts) registers.Define(start);
  for (const Reg8 byte : kBytes) registers.Define(byte);
}

void ChipSelects::Reset() {
  for (const Reg16 start : kStarts) registers_.Set(start, 0);
  for (const Reg8 byte : kBytes) registers_.Set(byte, 0);
}

}  // namespace chip
