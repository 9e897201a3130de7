#include "tables/nat_config.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

constexpr NatConfig kAllOff{.ip = 0xC0A80101,
                            .portPrefix = 0x80,
                            .defaultAge = 0x0258,
                            .finAge = 0x1234,
                            .lanToWan = 0,
                            .dmzToWan = 0,
                            .autoTcp = 0,
                            .autoUdp = 0,
                            .disableAgeOut = 0,
                            .filter = 0};

TEST(NatConfig, ReadLoadsTheFlagsOnceBeforeTheFilter) {
  ScriptedBus bus(R"(
    r32 0510 c0a80101
    r8  0515 80
    r16 051e 0258
    r16 0520 1234
    r8  051d 15        # auto UDP, DMZ to WAN, LAN to WAN
    r8  0105 10
  )");
  NatConfig config{};
  EXPECT_EQ(NatConfigRead(config), DriverStatus::kOk);
  EXPECT_EQ(config.ip, 0xC0A80101U);
  EXPECT_EQ(config.portPrefix, 0x80);
  EXPECT_EQ(config.defaultAge, 0x0258);
  EXPECT_EQ(config.finAge, 0x1234);
  EXPECT_EQ(config.lanToWan, 1);
  EXPECT_EQ(config.dmzToWan, 1);
  EXPECT_EQ(config.autoTcp, 0);
  EXPECT_EQ(config.autoUdp, 1);
  EXPECT_EQ(config.disableAgeOut, 0);
  EXPECT_EQ(config.filter, 1);
}

TEST(NatConfig, OtherBitsOfFlagsAndFilterByteAreNotSwitches) {
  ScriptedBus bus(R"(
    r32 0510 00000000
    r8  0515 00
    r16 051e 0000
    r16 0520 0000
    r8  051d ea        # auto TCP, disable age-out; bits 1, 6 and 7 mean nothing
    r8  0105 ef
  )");
  NatConfig config{};
  NatConfigRead(config);
  EXPECT_EQ(config.lanToWan, 0);
  EXPECT_EQ(config.dmzToWan, 0);
  EXPECT_EQ(config.autoTcp, 1);
  EXPECT_EQ(config.autoUdp, 0);
  EXPECT_EQ(config.disableAgeOut, 1);
  EXPECT_EQ(config.filter, 0);
}

TEST(NatConfig, WriteWithEverySwitchOnChangesOneBitAtATime) {
  ScriptedBus bus(R"(
    lock
    w32 0510 c0a80101
    w8  0515 80
    w16 051e 0258
    w16 0520 1234
    r8  051d 82
    w8  051d 83        # LAN to WAN
    r8  051d c2
    w8  051d c6        # DMZ to WAN
    r8  0105 a5
    w8  0105 b5        # filter
    r8  051d 82
    w8  051d 8a        # auto TCP
    r8  051d c2
    w8  051d d2        # auto UDP
    r8  051d 82
    w8  051d a2        # disable age-out
    unlock
  )");
  NatConfig config = kAllOff;
  config.lanToWan = config.dmzToWan = config.autoTcp = config.autoUdp = 1;
  config.disableAgeOut = config.filter = 1;
  EXPECT_EQ(NatConfigWrite(config), DriverStatus::kOk);
}

TEST(NatConfig, TheFilterSwitchedOffClearsABitOfTheFlagsInstead) {
  ScriptedBus bus(R"(
    lock
    w32 0510 c0a80101
    w8  0515 80
    w16 051e 0258
    w16 0520 1234
    r8  051d ff
    w8  051d fe        # LAN to WAN
    r8  051d fe
    w8  051d fa        # DMZ to WAN
    r8  051d fa
    w8  051d ea        # meant for the filter
    r8  051d ff
    w8  051d f7        # auto TCP
    r8  051d f7
    w8  051d e7        # auto UDP
    r8  051d e7
    w8  051d c7        # disable age-out
    unlock
  )");
  EXPECT_EQ(NatConfigWrite(kAllOff), DriverStatus::kOk);
}

TEST(NatConfig, TheCommandWritesThenReads) {
  ScriptedBus bus(R"(
    lock
    w32 0510 0a000001
    w8  0515 0f
    w16 051e 2345      # five digits typed
    w16 0520 ffff
    r8  051d 00
    w8  051d 00
    r8  051d 00
    w8  051d 04        # DMZ to WAN
    r8  051d 04
    w8  051d 04
    r8  051d 04
    w8  051d 04
    r8  051d 04
    w8  051d 14        # auto UDP
    r8  051d 14
    w8  051d 14
    unlock
    r32 0510 0a000001
    r8  0515 0f
    r16 051e 2345
    r16 0520 ffff
    r8  051d 14
    r8  0105 10        # the filter was on and stays on
  )");
  const Outcome outcome = RunLine("natcfg = 10.0.0.1 f 12345 0xabcdffff dw autoudp dw");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "IP: 10.0.0.1       \tPORTPREFIX:  f\n\r"
            "DEFAULTAGE: 2345 (902.9 second)\tFINAGE: ffff (6553.5 second)\n\r"
            "LAN TO WAN: FALSE\tDMZ TO WAN: TRUE\tFilter NAT: ENABLE\n\r"
            "Auto add TCP entry by hardware: FALSE\n\r"
            "Auto add UDP entry by hardware: TRUE\n\r"
            "Disable hardware age out: FALSE\n\r");
}

TEST(NatConfig, BadWordsTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"natcfg = 10.0.0.1 f 1 1 lw dw filter autotcp autoudp"},
                     {
                         "natcfg =",
                         "natcfg = 10.0.0.1 f 1",
                         "natcfg 1 10.0.0.1 f 1 1",
                         "natcfg == 10.0.0.1 f 1 1",
                         "natcfg = 10.0.0 f 1 1",
                         "natcfg = 10.0.0.1 100 1 1",
                         "natcfg = 10.0.0.1 f 123456789 1",
                         "natcfg = 10.0.0.1 f 1 123456789",
                         "natcfg = 10.0.0.1 f 1 g",
                         "natcfg = 10.0.0.1 f 1 1 lw nat",
                         "natcfg = 10.0.0.1 f 1 1 lw dw filter autotcp autoudp disageout",
                         "natcfg = 10.0.0.1 f 1 1 lw lw lw lw lw lw",
                     });
}

}  // namespace
}  // namespace monitor
