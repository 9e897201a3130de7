// What the chip does with its blocks.
#include "chip/router_chip.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace chip {
namespace {

TEST(RouterChip, FaultPointsHaveTheseNames) {
  RouterChip chip;
  EXPECT_EQ(chip.FaultNames(),
            (std::vector<std::string>{"reset", "mii", "sc", "tx", "status", "release", "nat", "l3",
                                      "mcast", "arp", "cls", "pst", "pdr", "pxt"}));
}

}  // namespace
}  // namespace chip
