#include "tables/nat_config.h"

namespace monitor {
namespace {

constexpr int kFirstSwitch = 6;
constexpr int kMostWords = 11;

/// A word that switches something on.
struct Switch {
  const char* word;
  std::uint8_t NatConfig::*field;
};

constexpr Switch kSwitches[] = {
    {"LW", &NatConfig::lanToWan},     {"DW", &NatConfig::dmzToWan},
    {"FILTER", &NatConfig::filter},   {"AUTOTCP", &NatConfig::autoTcp},
    {"AUTOUDP", &NatConfig::autoUdp}, {"DISAGEOUT", &NatConfig::disableAgeOut},
};

bool SwitchOn(const char* word, NatConfig& config) {
  for (const Switch& entry : kSwitches) {
    if (!WordIs(word, entry.word)) continue;
    config.*entry.field = 1;
    return true;
  }
  return false;
}

/// Up to eight digits, of which only the last four count.
bool ParseAge(const char* word, std::uint16_t& age) {
  std::uint32_t value;
  if (!ParseHex32(word, value)) return false;
  age = static_cast<std::uint16_t>(value);
  return true;
}

void PrintSeconds(std::uint16_t tenths) {
  Print("%04x (%d.%d second)", tenths, tenths / 10U, tenths % 10U);
}

void PrintSwitch(const char* label, std::uint8_t on) {
  ConsolePuts(label);
  ConsolePuts(on != 0 ? "TRUE\n\r" : "FALSE\n\r");
}

int Show() {
  NatConfig config{};
  NatConfigRead(config);
  NatConfigPrint(config);
  return kDone;
}

/// = <ip> <portprefix> <defaultage> <finage>[lw][dw][filter][autotcp][autoudp][disageout]:
/// switches that are not named are written as 0.
int WriteConfig(int argc, ArgVector argv) {
  NatConfig config{};
  if (argc < kFirstSwitch || argc > kMostWords || !WordIs(argv[1], "=") ||
      !ParseIp(argv[2], config.ip) || !ParseHex8(argv[3], config.portPrefix) ||
      !ParseAge(argv[4], config.defaultAge) || !ParseAge(argv[5], config.finAge)) {
    return kUsage;
  }
  for (int i = kFirstSwitch; i < argc; ++i) {
    if (!SwitchOn(argv[i], config)) return kUsage;
  }
  NatConfigWrite(config);
  return Show();
}

}  // namespace

void NatConfigPrint(const NatConfig& config) {
  Print("IP: %-15s\t", IpText(config.ip));
  Print("PORTPREFIX: %2x\n\r", config.portPrefix);
  ConsolePuts("DEFAULTAGE: ");
  PrintSeconds(config.defaultAge);
  ConsolePuts("\tFINAGE: ");
  PrintSeconds(config.finAge);
  ConsolePuts("\n\r");
  ConsolePuts(config.lanToWan != 0 ? "LAN TO WAN: TRUE\t" : "LAN TO WAN: FALSE\t");
  // Only the off text ends the line.
  ConsolePuts(config.dmzToWan != 0 ? "DMZ TO WAN: TRUE\t" : "DMZ TO WAN: FALSE\n\r");
  ConsolePuts(config.filter != 0 ? "Filter NAT: ENABLE\n\r" : "Filter NAT: DISABLE\n\r");
  PrintSwitch("Auto add TCP entry by hardware: ", config.autoTcp);
  PrintSwitch("Auto add UDP entry by hardware: ", config.autoUdp);
  PrintSwitch("Disable hardware age out: ", config.disableAgeOut);
}

int NatConfigCommand(int argc, ArgVector argv) {
  return argc == 1 ? Show() : WriteConfig(argc, argv);
}

}  // namespace monitor
