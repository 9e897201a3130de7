// Port configuration, station addresses, forwarding control.
#include "hostile/explore.h"
#include "hostile/models.h"
#include "mac/station_address.h"

namespace hostile {

using std::uint16_t;
using std::uint32_t;
using std::uint8_t;
using Mac = std::array<uint8_t, 6>;

namespace {

bool IsMacPort(uint8_t port) { return port == 1 || port == 2 || port == 4; }

/// WAN, LAN and DMZ as 0, 1 and 2.
unsigned Number(uint8_t port) { return port >> 1; }

DriverStatus ConfigurePort(uint8_t port, const monitor::PortConfig& config) {
  const unsigned control = Number(port);
  const unsigned shift = 2 * Number(port);
  W8(0x108, (R8(0x108) & ~(3U << shift)) | (config.interface & 3U) << shift);

  if (config.loopback > 2) return kRefused;
  if (config.loopback == 0) Set(0x003, 1U << shift);
  if (config.loopback == 1) Set(0x003, 2U << shift);
  if (config.loopback == 2) Clear(0x003, 3U << shift);

  if (config.link > 1) return kRefused;
  SetOrClear(control, 0x08, config.link == 1);
  if (config.duplex > 1) return kRefused;
  SetOrClear(control, 0x02, config.duplex == 1);
  if (config.speed > 1) return kRefused;
  SetOrClear(control, 0x04, config.speed == 1);

  if (config.flow_control == 0) W8(control, (R8(control) | 0x01) & 0xEF);
  uint16_t abilities;
  if (MiiRead(port, 4, abilities) != kOk) abilities = 0;
  MiiWrite(port, 4, abilities | 0x0400);
  SetOrClear(control, 0x20, config.vlan_aware != 0);
  return kOk;
}

DriverStatus WritePortConfig(uint8_t port, const monitor::PortConfig& config) {
  Lock();
  const DriverStatus status = IsMacPort(port) ? ConfigurePort(port, config) : kRefused;
  Unlock();
  return status;
}

DriverStatus ReadPortConfig(uint8_t port, monitor::PortConfig& config) {
  if (!IsMacPort(port)) return kRefused;
  const unsigned shift = 2 * Number(port);
  config.interface = R8(0x108, 0xFF) >> shift & 3;
  switch (R8(0x003, 0x3F) >> shift & 3) {
    case 0:
      config.loopback = 2;
      break;
    case 1:
      config.loopback = 0;
      break;
    case 2:
      config.loopback = 1;
      break;
    default:
      return kRefused;
  }
  const uint8_t control = R8(Number(port));
  config.link = control >> 3 & 1;
  config.duplex = control >> 1 & 1;
  config.speed = control >> 2 & 1;
  config.flow_control = 2;
  if ((control & 0x11) == 0x01) config.flow_control = 0;
  if ((control & 0x11) == 0x11) config.flow_control = 1;
  config.vlan_aware = control >> 5 & 1;
  return kOk;
}

constexpr uint8_t kPorts[] = {0, 1, 2, 3, 4, 5, 8, 9, 15, 16, 255};

TEST(Hostile, WritePortConfig) {
  monitor::PortConfig good{1, 0, 1, 0, 2, 2, 1};
  for (const uint8_t port : kPorts) Explore(WritePortConfig, monitor::WritePortConfig, port, good);
  // Each field through its values and beyond, the others as they are.
  for (uint8_t monitor::PortConfig::*field :
       {&monitor::PortConfig::link, &monitor::PortConfig::duplex, &monitor::PortConfig::speed,
        &monitor::PortConfig::flow_control, &monitor::PortConfig::interface,
        &monitor::PortConfig::loopback, &monitor::PortConfig::vlan_aware}) {
    for (const uint8_t value : Bytes{0, 1, 2, 3, 4, 255}) {
      for (const uint8_t port : Bytes{1, 2, 4}) {
        monitor::PortConfig config = good;
        config.*field = value;
        Explore(WritePortConfig, monitor::WritePortConfig, port, config);
      }
    }
  }
}
TEST(Hostile, ReadPortConfig) {
  for (const uint8_t port : kPorts) {
    Explore({.parts = 2}, ReadPortConfig, monitor::ReadPortConfig, port,
            Junk<monitor::PortConfig>());
  }
}

DriverStatus WriteMacAddr(uint8_t port, const Mac& mac) {
  if (port != 8 && port != 1) return kRefused;
  Lock();
  WriteAll(port == 8 ? 0x400 : 0x420, mac);
  Unlock();
  return kOk;
}

unsigned IpOffset(uint8_t port) { return port == 1 ? 0x410 : port == 2 ? 0x418 : 0x41C; }

DriverStatus WriteIpAddr(uint8_t port, uint32_t address) {
  if (!IsMacPort(port)) return kRefused;
  W32(IpOffset(port), address);
  return kOk;
}

}  // namespace

DriverStatus ReadMacAddr(uint8_t port, Mac& mac) {
  if (port != 8 && port != 1) return kRefused;
  ReadAll(port == 8 ? 0x400 : 0x420, mac);
  return kOk;
}

DriverStatus ReadIpAddr(uint8_t port, uint32_t& address) {
  if (!IsMacPort(port)) return kRefused;
  address = R32(IpOffset(port));
  return kOk;
}

TEST(Hostile, WriteMacAddr) {
  for (const uint8_t port : kPorts) {
    Explore(WriteMacAddr, monitor::WriteMacAddr, port, Junk<Mac>());
  }
}
TEST(Hostile, ReadMacAddr) {
  for (const uint8_t port : kPorts) Explore(ReadMacAddr, monitor::ReadMacAddr, port, Junk<Mac>());
}
TEST(Hostile, WriteIpAddr) {
  for (const uint8_t port : kPorts) {
    Explore(WriteIpAddr, monitor::WriteIpAddr, port, Junk<uint32_t>());
  }
}
TEST(Hostile, ReadIpAddr) {
  for (const uint8_t port : kPorts)
    Explore(ReadIpAddr, monitor::ReadIpAddr, port, Junk<uint32_t>());
}

namespace {

DriverStatus ReadForwardControl(monitor::ForwardControl& control) {
  control.filterWanToWan = R8(0x105) >> 2 & 1;
  const uint8_t drops = R8(0x107, 0xFF);
  control.dropChecksumErrors = drops >> 3 & 1;
  control.frgnn = drops >> 7 & 1;
  control.mirrlan = drops >> 6 & 1;
  control.mirrwan = drops >> 5 & 1;
  control.disttl = drops >> 4 & 1;
  control.mtu = drops >> 1 & 1;
  control.frg = drops & 1;
  control.frdallip = R8(0x106) & 1;
  const uint8_t mode = R8(0x104, 0x0D);
  control.pppMode = mode >> 2 & 3;
  control.ageoutbm = mode & 1;
  control.mtuBytes = R16(0x00C) & 0xFFF;
  return kOk;
}

DriverStatus WriteForwardControl(const monitor::ForwardControl& control) {
  Lock();
  SetOrClear(0x105, 0x04, control.filterWanToWan != 0);
  SetOrClear(0x107, 0x08, control.dropChecksumErrors != 0);
  SetOrClear(0x107, 0x80, control.frgnn != 0);
  SetOrClear(0x107, 0x40, control.mirrlan != 0);
  SetOrClear(0x107, 0x20, control.mirrwan != 0);
  SetOrClear(0x107, 0x10, control.disttl != 0);
  SetOrClear(0x107, 0x02, control.mtu != 0);
  SetOrClear(0x107, 0x01, control.frg != 0);
  SetOrClear(0x106, 0x01, control.frdallip != 0);
  W8(0x104, (R8(0x104) & 0xF3) | (control.pppMode & 3U) << 2);
  SetOrClear(0x104, 0x01, control.ageoutbm != 0);
  W16(0x00C, control.mtuBytes & 0xFFF);
  Unlock();
  return kOk;
}

TEST(Hostile, ReadForwardControl) {
  Explore(ReadForwardControl, monitor::ReadForwardControl, Junk<monitor::ForwardControl>());
}
TEST(Hostile, WriteForwardControl) {
  for (unsigned round = 0; round < 64; ++round) {
    auto control = Junk<monitor::ForwardControl>();
    for (uint8_t monitor::ForwardControl::*flag :
         {&monitor::ForwardControl::filterWanToWan, &monitor::ForwardControl::dropChecksumErrors,
          &monitor::ForwardControl::frgnn, &monitor::ForwardControl::mirrlan,
          &monitor::ForwardControl::mirrwan, &monitor::ForwardControl::disttl,
          &monitor::ForwardControl::mtu, &monitor::ForwardControl::frg,
          &monitor::ForwardControl::frdallip, &monitor::ForwardControl::ageoutbm}) {
      control.*flag = static_cast<uint8_t>(Random() & 1);
    }
    control.pppMode = static_cast<uint8_t>(round & 3);
    Explore(WriteForwardControl, monitor::WriteForwardControl, control);
  }
}

}  // namespace
}  // namespace hostile
