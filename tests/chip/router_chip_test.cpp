// What the chip does with its blocks, and its time.
#include "chip/router_chip.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace chip {
namespace {

/// What blocks have done: their names and the chip's time.
using Acts = std::vector<std::pair<std::string, std::uint64_t>>;

/// Acts at the given moments.
class ActingBlock : public Block {
 public:
  ActingBlock(const char* name, std::vector<std::uint64_t> moments, Acts& acts)
      : name_(name), moments_(std::move(moments)), acts_(acts) {}

  [[nodiscard]] const char* Name() const override { return name_; }
  void Reset() override { moments_.clear(); }
  void State(StateArchive& /*archive*/) override {}
  [[nodiscard]] std::optional<std::uint64_t> NextDeadline() const override {
    return moments_.empty() ? std::nullopt : std::optional(moments_.front());
  }
  void Act(std::uint64_t now) override {
    acts_.emplace_back(name_, now);
    moments_.erase(moments_.begin());
  }

 private:
  const char* name_;
  std::vector<std::uint64_t> moments_;
  Acts& acts_;
};

TEST(RouterChip, FaultPointsHaveTheseNames) {
  RouterChip chip;
  EXPECT_EQ(chip.FaultNames(),
            (std::vector<std::string>{"reset", "mii", "sc", "tx", "status", "release", "nat", "l3",
                                      "mcast", "arp", "cls", "pst", "pdr", "pxt"}));
}

TEST(RouterChip, NothingIsDueByItself) {
  RouterChip chip;
  EXPECT_EQ(chip.NextDeadline(), std::nullopt);
  chip.Advance(5);
  EXPECT_EQ(chip.Now(), 5U);
  EXPECT_EQ(chip.NextDeadline(), std::nullopt);
}

TEST(RouterChip, ItsTimeNeverGoesBack) {
  RouterChip chip;
  chip.Advance(5);
  chip.Advance(3);
  EXPECT_EQ(chip.Now(), 5U);
  chip.Reset();
  EXPECT_EQ(chip.Now(), 5U);
}

class Deadlines : public testing::Test {
 protected:
  Deadlines() {
    chip_.blocks.push_back(&first_);
    chip_.blocks.push_back(&second_);
  }

  Acts acts_;
  ActingBlock first_{"first", {20, 30, 50}, acts_};
  ActingBlock second_{"second", {10, 30}, acts_};
  RouterChip chip_;
};

TEST_F(Deadlines, AreMetInOrderAndEachAtItsTime) {
  EXPECT_EQ(chip_.NextDeadline(), 10U);
  chip_.Advance(9);
  EXPECT_EQ(acts_, Acts{});
  chip_.Advance(10);
  EXPECT_EQ(acts_, (Acts{{"second", 10}}));
  EXPECT_EQ(chip_.NextDeadline(), 20U);
  chip_.Advance(49);
  EXPECT_EQ(acts_, (Acts{{"second", 10}, {"first", 20}, {"first", 30}, {"second", 30}}));
  EXPECT_EQ(chip_.NextDeadline(), 50U);
  EXPECT_EQ(chip_.Now(), 49U);
  chip_.Advance(100);
  EXPECT_EQ(acts_.size(), 5U);
  EXPECT_EQ(chip_.NextDeadline(), std::nullopt);
}

TEST_F(Deadlines, ThatWereMissedAreMetAtThePresentTime) {
  ActingBlock late("late", {5, 6}, acts_);
  chip_.Advance(9);
  chip_.blocks.push_back(&late);
  chip_.Advance(9);
  EXPECT_EQ(acts_, (Acts{{"late", 9}, {"late", 9}}));
}

TEST_F(Deadlines, AreNotMetByALookAtTheClock) {
  chip_.clock = [] { return std::uint64_t{1000}; };
  EXPECT_EQ(chip_.Now(), 1000U);
  (void)chip_.registers.Load(0x200, 2);
  EXPECT_EQ(acts_, Acts{});
}

TEST_F(Deadlines, AreForgottenByAResetOfTheirBlock) {
  chip_.Reset();
  EXPECT_EQ(chip_.NextDeadline(), std::nullopt);
  chip_.Advance(1000);
  EXPECT_EQ(acts_, Acts{});
}

}  // namespace
}  // namespace chip
