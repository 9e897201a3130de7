// Reasons by destination, by raw loads and stores.
#include "support/frames.h"

namespace chip {
namespace {

class DestinationClass : public Frames {};

TEST_F(DestinationClass, TheReasonFollowsFromTheDestination) {
  const Bytes cpu_mac{0x00, 0xA0, 0xB1, 0xC2, 0xD3, 0xE4};
  const Bytes wan_mac{0x00, 0xA0, 0xB1, 0xC2, 0xD3, 0xE5};
  for (std::uint32_t i = 0; i < 6; ++i) {
    Store8(0x400 + i, cpu_mac[i]);
    Store8(0x420 + i, wan_mac[i]);
  }
  struct Row {
    monitor::PortId port;
    Bytes destination;
    unsigned reason;
  };
  const Row rows[] = {
      {kLan, cpu_mac, 1},
      {kWan, cpu_mac, 1},
      {kWan, wan_mac, 1},
      {kLan, wan_mac, 4},
      {kLan, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 2},
      {kLan, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}, 3},
      {kLan, {0x01, 0x00, 0x5E, 0x00, 0x00, 0x01}, 3},
      {kLan, {0x02, 0x00, 0x5E, 0x00, 0x00, 0x01}, 4},
  };
  for (const Row& row : rows) {
    Bytes frame = row.destination;
    frame.resize(60);
    ASSERT_TRUE(chip_.frames.Receive(row.port, frame));
    const std::uint32_t start = 0x01000000 + 0x800U * Load8(0x426);
    EXPECT_EQ(Memory(start + 10), row.reason);
    EXPECT_EQ(Memory(start + 9), row.port == kWan ? 0x01 : 0x02);
    TakeOffered();
  }
}

}  // namespace
}  // namespace chip
