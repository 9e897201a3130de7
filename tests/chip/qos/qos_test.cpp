// The QoS, rate-control and forwarding registers of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

TEST(QosRegisters, AreStorageThatStartsAtZero) {
  RouterChip chip;
  for (std::uint32_t offset = 0x800; offset <= 0x846; ++offset) {
    EXPECT_EQ(chip.registers.Load(offset, 1), 0U) << offset;
    chip.registers.Store(offset, 1, 0xFF - (offset & 0xFF));
  }
  for (std::uint32_t offset = 0x800; offset <= 0x846; ++offset) {
    EXPECT_EQ(chip.registers.Load(offset, 1), 0xFF - (offset & 0xFF)) << offset;
  }
  chip.Reset();
  EXPECT_EQ(chip.registers.Load(0x823, 1), 0U);
  EXPECT_TRUE(chip.registers.Complaints().empty());
}

TEST(QosRegisters, EndAfterTheXoffThreshold) {
  RouterChip chip;
  (void)chip.registers.Load(0x847, 1);
  EXPECT_EQ(chip.registers.Complaints().count("no register at 0847"), 1U);
}

TEST(RateControlRegisters, AreEightWords) {
  RouterChip chip;
  for (std::uint32_t offset = 0x020; offset < 0x030; offset += 2) {
    chip.registers.Store(offset, 2, 0xA500 + offset);
  }
  for (std::uint32_t offset = 0x020; offset < 0x030; offset += 2) {
    EXPECT_EQ(chip.registers.Load(offset, 2), 0xA500 + offset) << offset;
  }
  EXPECT_TRUE(chip.registers.Complaints().empty());
  (void)chip.registers.Load(0x030, 2);
  EXPECT_EQ(chip.registers.Complaints().count("no register at 0030"), 1U);
}

TEST(ForwardControlRegisters, AreStorage) {
  RouterChip chip;
  for (const std::uint32_t offset : {0x104U, 0x105U, 0x106U, 0x107U}) {
    chip.registers.Store(offset, 1, 0xA0 + offset % 8);
  }
  chip.registers.Store(0x00C, 2, 0xF5DC);
  EXPECT_EQ(chip.registers.Load(0x104, 4), 0xA4A5A6A7U);
  EXPECT_EQ(chip.registers.Load(0x00C, 1), 0xF5U);
  EXPECT_EQ(chip.registers.Load(0x00D, 1), 0xDCU);
  EXPECT_TRUE(chip.registers.Complaints().empty());
}

}  // namespace
}  // namespace chip
