#include "mac/station_address.h"

#include "console/port_words.h"

namespace monitor {
namespace {

constexpr std::array<Keyword, 2> kMacAddressWords{PortWord(PortId::kCpu), PortWord(PortId::kWan)};

int ShowAll() {
  MacAddress cpu_mac{};
  MacAddress wan_mac{};
  std::uint32_t wan_ip = 0;
  std::uint32_t lan_ip = 0;
  std::uint32_t dmz_ip = 0;
  ReadMacAddr(kPortCpu, cpu_mac);
  ReadMacAddr(kPortWan, wan_mac);
  ReadIpAddr(kPortWan, wan_ip);
  ReadIpAddr(kPortLan, lan_ip);
  ReadIpAddr(kPortDmz, dmz_ip);
  ConsolePuts("CPUMAC: ");
  PrintMac(cpu_mac);
  ConsolePuts("\tWANMAC: ");
  PrintMac(wan_mac);
  Print("\n\rWANIP: %-15s", IpText(wan_ip));
  Print(" LANIP: %-15s", IpText(lan_ip));
  Print(" DMZIP: %-15s\n\r", IpText(dmz_ip));
  return kDone;
}

/// m cpu|wan <MAC addr>: the answer has no line end.
int SetMac(ArgVector argv) {
  std::uint8_t port;
  MacAddress mac;
  if (!ParseKeyword(argv[2], kMacAddressWords, port) || !ParseMac(argv[3], mac)) return kUsage;
  WriteMacAddr(port, mac);
  ReadMacAddr(port, mac);
  Print("%sMAC: ", argv[2]);
  PrintMac(mac);
  return kDone;
}

/// i lan|wan|dmz <IP addr>
int SetIp(ArgVector argv) {
  std::uint8_t port;
  std::uint32_t address;
  if (!ParseKeyword(argv[2], kMacPortWords, port) || !ParseIp(argv[3], address)) return kUsage;
  WriteIpAddr(port, address);
  ReadIpAddr(port, address);
  Print("%sIP: ", argv[2]);
  Print("%s\n\r", IpText(address));
  return kDone;
}

}  // namespace

int StationAddressCommand(int argc, ArgVector argv) {
  if (argc == 1) return ShowAll();
  if (argc != 4) return kUsage;
  if (WordIs(argv[1], "M")) return SetMac(argv);
  if (WordIs(argv[1], "I")) return SetIp(argv);
  return kUsage;
}

}  // namespace monitor
