#include "mac/station_address.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

TEST(StationAddress, MacAddressesAreStoredByteByByteUnderTheLock) {
  ScriptedBus bus(R"(
    lock
    w8 0400 02
    w8 0401 11
    w8 0402 22
    w8 0403 33
    w8 0404 44
    w8 0405 55
    unlock
    lock
    w8 0420 02
    w8 0421 11
    w8 0422 22
    w8 0423 33
    w8 0424 44
    w8 0425 55
    unlock
  )");
  const MacAddress mac{0x02, 0x11, 0x22, 0x33, 0x44, 0x55};
  EXPECT_EQ(WriteMacAddr(8, mac), DriverStatus::kOk);
  EXPECT_EQ(WriteMacAddr(1, mac), DriverStatus::kOk);
}

TEST(StationAddress, MacAddressesAreLoadedByteByByte) {
  ScriptedBus bus(R"(
    r8 0400 01
    r8 0401 02
    r8 0402 03
    r8 0403 04
    r8 0404 05
    r8 0405 06
    r8 0420 f1
    r8 0421 f2
    r8 0422 f3
    r8 0423 f4
    r8 0424 f5
    r8 0425 f6
  )");
  MacAddress mac{};
  EXPECT_EQ(ReadMacAddr(8, mac), DriverStatus::kOk);
  EXPECT_EQ(mac, (MacAddress{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(ReadMacAddr(1, mac), DriverStatus::kOk);
  EXPECT_EQ(mac, (MacAddress{0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6}));
}

TEST(StationAddress, IpAddressesAreOneWordEach) {
  ScriptedBus bus(R"(
    w32 0410 c0a80101
    w32 0418 0a000001
    w32 041c 01020304
    r32 0410 c0a80102
    r32 0418 0a000002
    r32 041c 01020305
  )");
  EXPECT_EQ(WriteIpAddr(1, 0xC0A80101), DriverStatus::kOk);
  EXPECT_EQ(WriteIpAddr(2, 0x0A000001), DriverStatus::kOk);
  EXPECT_EQ(WriteIpAddr(4, 0x01020304), DriverStatus::kOk);
  std::uint32_t address = 0;
  EXPECT_EQ(ReadIpAddr(1, address), DriverStatus::kOk);
  EXPECT_EQ(address, 0xC0A80102U);
  EXPECT_EQ(ReadIpAddr(2, address), DriverStatus::kOk);
  EXPECT_EQ(address, 0x0A000002U);
  EXPECT_EQ(ReadIpAddr(4, address), DriverStatus::kOk);
  EXPECT_EQ(address, 0x01020305U);
}

TEST(StationAddress, OtherPortsAreRefusedUntouched) {
  ScriptedBus bus("");
  MacAddress mac{9};
  std::uint32_t address = 9;
  for (const auto port : std::initializer_list<std::uint8_t>{0, 2, 3, 4, 9, 16}) {
    EXPECT_EQ(WriteMacAddr(port, mac), DriverStatus::kRefused);
    EXPECT_EQ(ReadMacAddr(port, mac), DriverStatus::kRefused);
  }
  for (const auto port : std::initializer_list<std::uint8_t>{0, 3, 5, 8, 16}) {
    EXPECT_EQ(WriteIpAddr(port, address), DriverStatus::kRefused);
    EXPECT_EQ(ReadIpAddr(port, address), DriverStatus::kRefused);
  }
  EXPECT_EQ(mac[0], 9);
  EXPECT_EQ(address, 9U);
}

TEST(StationAddress, ThePlainCommandLoadsBothMacsThenTheThreeAddresses) {
  ScriptedBus bus(R"(
    r8  0400 00
    r8  0401 0a
    r8  0402 ab
    r8  0403 00
    r8  0404 01
    r8  0405 ff
    r8  0420 10
    r8  0421 20
    r8  0422 30
    r8  0423 40
    r8  0424 50
    r8  0425 60
    r32 0410 01020304
    r32 0418 c0a80101
    r32 041c fffefdfc
  )");
  const Outcome outcome = RunLine("macaddr");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "CPUMAC: 000aab0001ff\tWANMAC: 102030405060"
            "\n\rWANIP: 1.2.3.4         LANIP: 192.168.1.1     DMZIP: 255.254.253.252\n\r");
}

TEST(StationAddress, TheCommandPrintsWhatReadsBack) {
  ScriptedBus bus(R"(
    lock
    w8  0420 00
    w8  0421 00
    w8  0422 00
    w8  0423 00
    w8  0424 0a
    w8  0425 bc
    unlock
    r8  0420 00
    r8  0421 00
    r8  0422 00
    r8  0423 00
    r8  0424 0a
    r8  0425 bd
    w32 041c 0a000001
    r32 041c 0a000002
  )");
  Outcome outcome = RunLine("macaddr m wan abc");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "WANMAC: 000000000abd");
  outcome = RunLine("macaddr i dmz 10.0.0.1");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "DMZIP: 10.0.0.2\n\r");
}

TEST(StationAddress, WhatDoesNotFitTouchesNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused(
      {"macaddr m cpu 1", "macaddr i lan 1.2.3.4"},
      {"macaddr m", "macaddr m cpu", "macaddr m lan 001122334455", "macaddr m dmz 001122334455",
       "macaddr m cpu 0011223344556", "macaddr m cpu 00-11-22-33-44-55", "macaddr i cpu 1.2.3.4",
       "macaddr i wan 1.2.3", "macaddr i wan 001122334455", "macaddr x wan 1.2.3.4",
       "macaddr m cpu 001122334455 1"});
}

}  // namespace
}  // namespace monitor
