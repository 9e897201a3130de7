// The generation of a table: a number that changes whenever a lookup may have another result.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class Generation : public testing::Test {
 protected:
  /// A step of the route engine, waited for.
  void Run(std::uint8_t start) {
    chip_.registers.Store(0x60D, 1, start);
    (void)chip_.registers.Load(0x60D, 1);
    (void)chip_.registers.Load(0x60D, 1);
  }

  RouterChip chip_;
  std::uint64_t before_ = chip_.l3.Generation();
};

TEST_F(Generation, RisesWhenAnEntryIsWritten) {
  chip_.registers.Store(0x604, 1, 24);
  EXPECT_EQ(chip_.l3.Generation(), before_);
  Run(0x0D);
  EXPECT_NE(chip_.l3.Generation(), before_);
  EXPECT_EQ(chip_.l3.Entries()[0].mask, 24);
}

TEST_F(Generation, StaysWhenACounterIsWrittenOrAnEntryRead) {
  chip_.registers.Store(0x610, 4, 7);
  Run(0x1D);
  EXPECT_EQ(chip_.l3.Entries()[0].counter, 7U);
  Run(0x06);
  chip_.l3.Mark(0).counter = 8;
  chip_.l3.SetMapBit(5);
  EXPECT_EQ(chip_.l3.Generation(), before_);
}

TEST_F(Generation, RisesWhenAnEntryIsChangedAndAtReset) {
  chip_.l3.Change(5).valid = true;
  const std::uint64_t changed = chip_.l3.Generation();
  EXPECT_NE(changed, before_);
  chip_.Reset();
  EXPECT_NE(chip_.l3.Generation(), changed);
}

TEST_F(Generation, OfTheNatTablesRisesWithWritesAndDeletes) {
  const auto run = [this](std::uint8_t start) {
    chip_.registers.Store(0x51C, 1, start);
    (void)chip_.registers.Load(0x51C, 1);
    (void)chip_.registers.Load(0x51C, 1);
  };
  const std::uint64_t empty = chip_.nat.main.Generation();
  run(0x59);
  const std::uint64_t written = chip_.nat.main.Generation();
  EXPECT_NE(written, empty);
  run(0x19);
  EXPECT_NE(chip_.nat.main.Generation(), written);
}

}  // namespace
}  // namespace chip
