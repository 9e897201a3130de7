#include "mac/forward_control.h"

#include <gtest/gtest.h>

#include "support/scripted_bus.h"

namespace monitor {
namespace {

TEST(ForwardControl, ReadLoadsEachRegisterOnce) {
  ScriptedBus bus(R"(
    r8  0105 fb        # all but WAN to WAN
    r8  0107 5d        # mirror LAN, TTL, checksum, frg; bit 2 is unused
    r8  0106 fe        # all but bit 0
    r8  0104 fb        # mode 2, ageoutbm
    r16 000c f5dc
  )");
  ForwardControl control{};
  EXPECT_EQ(ReadForwardControl(control), DriverStatus::kOk);
  EXPECT_EQ(control.filterWanToWan, 0);
  EXPECT_EQ(control.dropChecksumErrors, 1);
  EXPECT_EQ(control.frgnn, 0);
  EXPECT_EQ(control.mirrlan, 1);
  EXPECT_EQ(control.mirrwan, 0);
  EXPECT_EQ(control.disttl, 1);
  EXPECT_EQ(control.mtu, 0);
  EXPECT_EQ(control.frg, 1);
  EXPECT_EQ(control.frdallip, 0);
  EXPECT_EQ(control.pppMode, 2);
  EXPECT_EQ(control.ageoutbm, 1);
  EXPECT_EQ(control.mtuBytes, 0x5DC);
}

TEST(ForwardControl, ReadOfTheOppositeSwitches) {
  ScriptedBus bus(R"(
    r8  0105 04
    r8  0107 a2        # frgnn, mirror WAN, mtu
    r8  0106 01
    r8  0104 f6        # mode 1, no ageoutbm
    r16 000c 0fff
  )");
  ForwardControl control{};
  EXPECT_EQ(ReadForwardControl(control), DriverStatus::kOk);
  EXPECT_EQ(control.filterWanToWan, 1);
  EXPECT_EQ(control.dropChecksumErrors, 0);
  EXPECT_EQ(control.frgnn, 1);
  EXPECT_EQ(control.mirrlan, 0);
  EXPECT_EQ(control.mirrwan, 1);
  EXPECT_EQ(control.disttl, 0);
  EXPECT_EQ(control.mtu, 1);
  EXPECT_EQ(control.frg, 0);
  EXPECT_EQ(control.frdallip, 1);
  EXPECT_EQ(control.pppMode, 1);
  EXPECT_EQ(control.ageoutbm, 0);
  EXPECT_EQ(control.mtuBytes, 0xFFF);
}

// Each load answers anew, so that a store of anything but that load's value is seen.
TEST(ForwardControl, WriteSetsSwitchBySwitch) {
  ScriptedBus bus(R"(
    lock
    r8  0105 a1
    w8  0105 a5
    r8  0107 a5
    w8  0107 ad        # bit 3, checksum errors
    r8  0107 25
    w8  0107 a5        # bit 7, frgnn
    r8  0107 a5
    w8  0107 e5        # bit 6, mirror LAN
    r8  0107 85
    w8  0107 a5        # bit 5, mirror WAN
    r8  0107 a5
    w8  0107 b5        # bit 4, TTL
    r8  0107 a5
    w8  0107 a7        # bit 1, MTU
    r8  0107 a4
    w8  0107 a5        # bit 0, frg
    r8  0106 a4
    w8  0106 a5
    r8  0104 a5
    w8  0104 a9        # mode 2 in place of 1
    r8  0104 aa
    w8  0104 ab
    w16 000c 05dc
    unlock
  )");
  EXPECT_EQ(WriteForwardControl({.filterWanToWan = 1,
                                 .dropChecksumErrors = 1,
                                 .frgnn = 1,
                                 .mirrlan = 1,
                                 .mirrwan = 1,
                                 .disttl = 1,
                                 .mtu = 1,
                                 .frg = 1,
                                 .frdallip = 1,
                                 .pppMode = 2,
                                 .ageoutbm = 1,
                                 .mtuBytes = 0x5DC}),
            DriverStatus::kOk);
}

TEST(ForwardControl, WriteClearsSwitchBySwitch) {
  ScriptedBus bus(R"(
    lock
    r8  0105 5e
    w8  0105 5a
    r8  0107 5a
    w8  0107 52
    r8  0107 da
    w8  0107 5a
    r8  0107 5a
    w8  0107 1a
    r8  0107 7a
    w8  0107 5a
    r8  0107 5a
    w8  0107 4a
    r8  0107 5a
    w8  0107 58
    r8  0107 5b
    w8  0107 5a
    r8  0106 5b
    w8  0106 5a
    r8  0104 5e
    w8  0104 52        # mode 0 in place of 3
    r8  0104 5b
    w8  0104 5a
    w16 000c 0234      # the upper four bits are never written as ones
    unlock
  )");
  EXPECT_EQ(WriteForwardControl({.filterWanToWan = 0,
                                 .dropChecksumErrors = 0,
                                 .frgnn = 0,
                                 .mirrlan = 0,
                                 .mirrwan = 0,
                                 .disttl = 0,
                                 .mtu = 0,
                                 .frg = 0,
                                 .frdallip = 0,
                                 .pppMode = 0,
                                 .ageoutbm = 0,
                                 .mtuBytes = 0x1234}),
            DriverStatus::kOk);
}

}  // namespace
}  // namespace monitor
