// The memory controller of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

TEST(MemoryController, RegistersHoldWhatIsStored) {
  RouterChip chip;
  for (std::uint32_t start = 0x110; start <= 0x124; start += 4) {
    EXPECT_EQ(chip.registers.Load(start, 2), 0U) << start;
    chip.registers.Store(start, 2, 0x1234 + start);
  }
  const std::uint32_t bytes[] = {0x112, 0x116, 0x11A, 0x11B, 0x11E, 0x11F, 0x122, 0x123, 0x130};
  for (const std::uint32_t byte : bytes) {
    EXPECT_EQ(chip.registers.Load(byte, 1), 0U) << byte;
    chip.registers.Store(byte, 1, byte & 0xFF);
  }
  for (std::uint32_t start = 0x110; start <= 0x124; start += 4) {
    EXPECT_EQ(chip.registers.Load(start, 2), 0x1234 + start);
  }
  for (const std::uint32_t byte : bytes) EXPECT_EQ(chip.registers.Load(byte, 1), byte & 0xFF);
  EXPECT_TRUE(chip.registers.Complaints().empty());
}

}  // namespace
}  // namespace chip
