#include "mac/port_config.h"

#include <gtest/gtest.h>

#include <string>

#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

constexpr PortConfig kUp{.link = 1,
                         .duplex = 1,
                         .speed = 1,
                         .flow_control = 0,
                         .interface = 2,
                         .loopback = 2,
                         .vlan_aware = 1};

/// The port's PHY advertises pause: its register 4 is read as 01e1 and written as 05e1.
std::string Advertise(char phy) {
  const std::string command = std::string("w16 0408 0") + phy;
  const std::string ready = "r16 0408 4000 x2\n";
  return ready + command + "c4\n" + command + "44\n r16 0408 6000 x2\n r16 040c 01e1 x2\n" + ready +
         "lock\n w16 040a 05e1\n" + command + "a4\n" + command + "24\n unlock\n" + ready;
}

TEST(PortConfig, WriteIsOneLoadAndOneStoreForEachField) {
  const std::string transcript = R"(
    lock
    r8  0108 a5
    w8  0108 a6        # the pair becomes 2
    r8  0003 a7
    w8  0003 a4        # no loopback: both bits
    r8  0000 a5
    w8  0000 ad        # link
    r8  0000 a5
    w8  0000 a7        # duplex
    r8  0000 a1
    w8  0000 a5        # speed
    r8  0000 b4
    w8  0000 a5        # FC: (b4 OR 01) AND ef
  )" + Advertise('1') + R"(
    r8  0000 85
    w8  0000 a5        # VLAN
    unlock
  )";
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(WritePortConfig(1, kUp), DriverStatus::kOk);
}

TEST(PortConfig, WriteClearsWhatIsOff) {
  const std::string transcript = R"(
    lock
    r8  0108 a5
    w8  0108 a1        # bits 3..2 become 0
    r8  0003 a5
    w8  0003 a5        # internal: bit 2 is set already
    r8  0001 ff
    w8  0001 f7        # link
    r8  0001 ff
    w8  0001 fd        # duplex
    r8  0001 ff
    w8  0001 fb        # speed
  )" + Advertise('2') + R"(
    r8  0001 ff
    w8  0001 df        # VLAN
    unlock
  )";
  ScriptedBus bus(transcript.c_str());
  const PortConfig config{.link = 0,
                          .duplex = 0,
                          .speed = 0,
                          .flow_control = 1,
                          .interface = 0,
                          .loopback = 0,
                          .vlan_aware = 0};
  EXPECT_EQ(WritePortConfig(2, config), DriverStatus::kOk);
}

TEST(PortConfig, WriteCutsTheInterfaceAndOnlyAddsLoopback) {
  const std::string transcript = R"(
    lock
    r8  0108 8a
    w8  0108 ba        # bits 5..4 become 3 of ff
    r8  0003 95
    w8  0003 b5        # external: bit 5; internal, bit 4, stays
    r8  0002 00
    w8  0002 08
    r8  0002 00
    w8  0002 02
    r8  0002 00
    w8  0002 04
  )" + Advertise('4') + R"(
    r8  0002 80
    w8  0002 a0
    unlock
  )";
  ScriptedBus bus(transcript.c_str());
  PortConfig config = kUp;
  config.flow_control = 2;
  config.interface = 0xFF;
  config.loopback = 1;
  config.vlan_aware = 0x80;
  EXPECT_EQ(WritePortConfig(4, config), DriverStatus::kOk);
}

TEST(PortConfig, LoopbackPairsOfTheOtherPorts) {
  // The link is out of range, which ends each write after the loopback.
  ScriptedBus bus(R"(
    lock
    r8  0108 00
    w8  0108 02
    r8  0003 00
    w8  0003 01        # WAN internal
    unlock
    lock
    r8  0108 00
    w8  0108 02
    r8  0003 00
    w8  0003 02        # WAN external
    unlock
    lock
    r8  0108 00
    w8  0108 08
    r8  0003 00
    w8  0003 08        # LAN external
    unlock
    lock
    r8  0108 00
    w8  0108 08
    r8  0003 ff
    w8  0003 f3        # LAN none
    unlock
    lock
    r8  0108 00
    w8  0108 20
    r8  0003 00
    w8  0003 10        # DMZ internal
    unlock
    lock
    r8  0108 00
    w8  0108 20
    r8  0003 ff
    w8  0003 cf        # DMZ none
    unlock
  )");
  const auto write = [](std::uint8_t port, std::uint8_t loopback) {
    PortConfig config = kUp;
    config.link = 2;
    config.loopback = loopback;
    return WritePortConfig(port, config);
  };
  EXPECT_EQ(write(1, 0), DriverStatus::kRefused);
  EXPECT_EQ(write(1, 1), DriverStatus::kRefused);
  EXPECT_EQ(write(2, 1), DriverStatus::kRefused);
  EXPECT_EQ(write(2, 2), DriverStatus::kRefused);
  EXPECT_EQ(write(4, 0), DriverStatus::kRefused);
  EXPECT_EQ(write(4, 2), DriverStatus::kRefused);
}

TEST(PortConfig, AFieldOutOfRangeEndsTheWriteWhereItStands) {
  ScriptedBus bus(R"(
    lock
    r8 0108 00
    w8 0108 02
    unlock             # loopback
    lock
    r8 0108 00
    w8 0108 02
    r8 0003 00
    w8 0003 00
    unlock             # link
    lock
    r8 0108 00
    w8 0108 02
    r8 0003 00
    w8 0003 00
    r8 0000 00
    w8 0000 08
    unlock             # duplex
    lock
    r8 0108 00
    w8 0108 02
    r8 0003 00
    w8 0003 00
    r8 0000 00
    w8 0000 08
    r8 0000 00
    w8 0000 02
    unlock             # speed
  )");
  PortConfig config = kUp;
  config.loopback = 3;
  EXPECT_EQ(WritePortConfig(1, config), DriverStatus::kRefused);
  config = kUp;
  config.link = 2;
  EXPECT_EQ(WritePortConfig(1, config), DriverStatus::kRefused);
  config = kUp;
  config.duplex = 2;
  EXPECT_EQ(WritePortConfig(1, config), DriverStatus::kRefused);
  config = kUp;
  config.speed = 0xFF;
  EXPECT_EQ(WritePortConfig(1, config), DriverStatus::kRefused);
}

TEST(PortConfig, OtherPortsAreRefusedWithoutAnAccess) {
  ScriptedBus bus(R"(
    lock
    unlock
    lock
    unlock
    lock
    unlock
  )");
  PortConfig config = kUp;
  EXPECT_EQ(WritePortConfig(0, config), DriverStatus::kRefused);
  EXPECT_EQ(WritePortConfig(3, config), DriverStatus::kRefused);
  EXPECT_EQ(WritePortConfig(8, config), DriverStatus::kRefused);
  EXPECT_EQ(ReadPortConfig(0, config), DriverStatus::kRefused);
  EXPECT_EQ(ReadPortConfig(3, config), DriverStatus::kRefused);
  EXPECT_EQ(ReadPortConfig(8, config), DriverStatus::kRefused);
}

constexpr char kWriteUpToThePhy[] = R"(
    lock
    r8  0108 00
    w8  0108 02
    r8  0003 00
    w8  0003 00
    r8  0000 00
    w8  0000 08
    r8  0000 08
    w8  0000 0a
    r8  0000 0a
    w8  0000 0e
    r8  0000 0e
    w8  0000 0f
)";

TEST(PortConfig, ABusyPhyInterfaceDoesNotEndTheWrite) {
  const std::string transcript = std::string(kWriteUpToThePhy) + R"(
    r16 0408 0000 x2   # the read is not begun
    r16 0408 0000 x2   # nor is the write
    r8  0000 0f
    w8  0000 2f
    unlock
  )";
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(WritePortConfig(1, kUp), DriverStatus::kOk);
}

TEST(PortConfig, APhyThatDoesNotAnswerCountsAsZero) {
  const std::string transcript = std::string(kWriteUpToThePhy) + R"(
    r16 0408 4000 x2
    w16 0408 01c4
    w16 0408 0144
    r16 0408 4000 x20002
    r16 0408 4000 x2
    lock
    w16 040a 0400
    w16 0408 01a4
    w16 0408 0124
    unlock
    r16 0408 0000 x20002
    r8  0000 0f
    w8  0000 2f
    unlock
  )";
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(WritePortConfig(1, kUp), DriverStatus::kOk);
}

/// The seven fields in record order.
std::string Fields(const PortConfig& config) {
  std::string text;
  for (const unsigned field : {config.link, config.duplex, config.speed, config.flow_control,
                               config.interface, config.loopback, config.vlan_aware}) {
    text += std::to_string(field);
  }
  return text;
}

TEST(PortConfig, ReadIsOneLoadOfEachRegister) {
  ScriptedBus bus(R"(
    r8 0108 c6        # WAN 2
    r8 0003 dc        # WAN none
    r8 0000 e9        # VLAN, link, FC
    r8 0108 c6        # LAN 1
    r8 0003 c8        # LAN external
    r8 0001 11        # AFC
    r8 0108 f6        # DMZ 3
    r8 0003 dc        # DMZ internal
    r8 0002 d6        # bit 4 without bit 0: off; speed, duplex
    r8 0108 00
    r8 0003 00
    r8 0000 ee        # neither bit: off
  )");
  PortConfig config{};
  EXPECT_EQ(ReadPortConfig(1, config), DriverStatus::kOk);
  EXPECT_EQ(Fields(config), "1000221");
  EXPECT_EQ(ReadPortConfig(2, config), DriverStatus::kOk);
  EXPECT_EQ(Fields(config), "0001110");
  EXPECT_EQ(ReadPortConfig(4, config), DriverStatus::kOk);
  EXPECT_EQ(Fields(config), "0112300");
  EXPECT_EQ(ReadPortConfig(1, config), DriverStatus::kOk);
  EXPECT_EQ(Fields(config), "1112021");
}

TEST(PortConfig, BothLoopbackBitsEndTheRead) {
  ScriptedBus bus(R"(
    r8 0108 00
    r8 0003 03
    r8 0108 00
    r8 0003 0c
    r8 0108 00
    r8 0003 30
  )");
  PortConfig config{};
  EXPECT_EQ(ReadPortConfig(1, config), DriverStatus::kRefused);
  EXPECT_EQ(ReadPortConfig(2, config), DriverStatus::kRefused);
  EXPECT_EQ(ReadPortConfig(4, config), DriverStatus::kRefused);
}

TEST(PortConfig, TheCommandPrintsWhatReadsBack) {
  const std::string transcript = R"(
    lock
    r8  0108 00
    w8  0108 30
    r8  0003 00
    w8  0003 00
    r8  0002 00
    w8  0002 08
    r8  0002 08
    w8  0002 0a
    r8  0002 0a
    w8  0002 0e
  )" + Advertise('4') + R"(
    r8  0002 0e
    w8  0002 0e
    unlock
    r8  0108 10
    r8  0003 00
    r8  0002 33
  )";
  ScriptedBus bus(transcript.c_str());
  const Outcome outcome = RunLine("maccfg dmz = up 100 full rmii afc");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "Port: DMZ\tLINK: DOWN\tSPEED: 10MBPS\n\r"
            "DUPLEX: FULL\tINTERFACE: \tLOOPBACK: NO\n\r"
            "FLOW CONTROL: AFC\tVLAN AWARE: TRUE\n\r");
}

TEST(PortConfig, WhatDoesNotFitTouchesNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused(
      {"maccfg lan = up 100 full mii int fc vlan"},
      {"maccfg", "maccfg cpu", "maccfg xyz", "maccfg wan =", "maccfg wan up",
       "maccfg wan : up 100 full mii", "maccfg wan = up 100 full", "maccfg wan = on 100 full mii",
       "maccfg wan = up 1000 full mii", "maccfg wan = up 100 both mii",
       "maccfg wan = up 100 full gmii", "maccfg wan = up 100 full mii no",
       "maccfg wan = up 100 full mii int ext fc vlan", "maccfg cpu = up 100 full mii"});
}

}  // namespace
}  // namespace monitor
