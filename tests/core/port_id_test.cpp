#include "core/port_id.h"

#include <gtest/gtest.h>

namespace monitor {
namespace {

TEST(Ports, AreExactlyOneBit) {
  for (unsigned code = 0; code < 256; ++code) {
    EXPECT_EQ(IsPort(code), code == 1 || code == 2 || code == 4 || code == 8) << code;
  }
}

TEST(Ports, HaveANumberACodeAndNames) {
  struct Row {
    PortId port;
    unsigned index;
    unsigned code;
    const char* word;
    const char* name;
  };
  constexpr Row kRows[] = {{PortId::kWan, 0, 1, "WAN", "wan"},
                           {PortId::kLan, 1, 2, "LAN", "lan"},
                           {PortId::kDmz, 2, 4, "DMZ", "dmz"},
                           {PortId::kCpu, 3, 8, "CPU", "cpu"}};
  for (const Row& row : kRows) {
    EXPECT_EQ(IndexOf(row.port), row.index);
    EXPECT_EQ(CodeOf(row.port), row.code);
    EXPECT_EQ(PortOfCode(row.code), row.port);
    EXPECT_STREQ(WordOf(row.port), row.word);
    EXPECT_STREQ(NameOf(row.port), row.name);
    EXPECT_EQ(IsMacPort(row.port), row.index < 3);
  }
}

TEST(Ports, WithAMacHaveCountersAndAPhy) {
  constexpr unsigned kPhys[] = {1, 2, 4};
  ASSERT_EQ(kMacPorts.size(), 3U);
  for (unsigned i = 0; i < 3; ++i) {
    EXPECT_EQ(IndexOf(kMacPorts[i]), i);
    EXPECT_EQ(StatSelectorOf(kMacPorts[i]), i);
    EXPECT_EQ(PortOfStatSelector(i), kMacPorts[i]);
    EXPECT_EQ(PhyAddressOf(kMacPorts[i]), kPhys[i]);
  }
  EXPECT_FALSE(IsMacPort(PortOfStatSelector(3)));
}

}  // namespace
}  // namespace monitor
