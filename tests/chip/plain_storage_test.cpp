// Blocks of the model that are plain storage: TDM timer, port configuration, station addresses.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

struct Place {
  std::uint32_t offset;
  unsigned width;
};

constexpr Place kStorage[] = {
    {0x000, 1}, {0x001, 1}, {0x002, 1}, {0x003, 1}, {0x108, 1},              // ports
    {0x004, 2}, {0x006, 1}, {0x008, 2}, {0x00A, 1},                          // TDM
    {0x400, 1}, {0x401, 1}, {0x402, 1}, {0x403, 1}, {0x404, 1}, {0x405, 1},  // CPU MAC
    {0x410, 4}, {0x418, 4}, {0x41C, 4},                                      // addresses
    {0x420, 1}, {0x421, 1}, {0x422, 1}, {0x423, 1}, {0x424, 1}, {0x425, 1},  // WAN MAC
};

TEST(StorageModel, KeepsEveryBitUntilReset) {
  RouterChip chip;
  for (const auto [offset, width] : kStorage) {
    EXPECT_EQ(chip.registers.Load(offset, width), 0U) << offset;
    chip.registers.Store(offset, width, 0xA55AC33Cu >> (32 - 8 * width));
  }
  for (const auto [offset, width] : kStorage) {
    EXPECT_EQ(chip.registers.Load(offset, width), 0xA55AC33Cu >> (32 - 8 * width)) << offset;
  }
  chip.Reset();
  for (const auto [offset, width] : kStorage) {
    EXPECT_EQ(chip.registers.Load(offset, width), 0U) << offset;
  }
  EXPECT_TRUE(chip.registers.Complaints().empty());
}

TEST(StorageModel, TheGapInTheStationAddressesIsUnmapped) {
  RouterChip chip;
  (void)chip.registers.Load(0x414, 4);
  EXPECT_EQ(chip.registers.Complaints().count("no register at 0414"), 1U);
}

}  // namespace
}  // namespace chip
