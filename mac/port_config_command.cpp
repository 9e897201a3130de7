#include "mac/port_config.h"

#include "console/port_words.h"

namespace monitor {
namespace {

constexpr int kFirstOption = 7;
constexpr int kMostWords = 10;

constexpr std::array<Keyword, 2> kLinkWords{{{"UP", 1}, {"DOWN", 0}}};
constexpr std::array<Keyword, 2> kSpeedWords{{{"100", 1}, {"10", 0}}};
constexpr std::array<Keyword, 2> kDuplexWords{{{"FULL", 1}, {"HALF", 0}}};
constexpr std::array<Keyword, 3> kInterfaceWords{
    {{"RMII", kInterfaceRmii}, {"MII", kInterfaceMii}, {"SERIAL", kInterfaceSerial}}};
constexpr std::array<Keyword, 2> kLoopbackWords{
    {{"INT", kLoopbackInternal}, {"EXT", kLoopbackExternal}}};
constexpr std::array<Keyword, 2> kFlowControlWords{
    {{"FC", kFlowControlFc}, {"AFC", kFlowControlAfc}}};
constexpr std::array<Keyword, 1> kVlanWords{{{"VLAN", 1}}};

// Texts by value. A value without a name prints as nothing.
constexpr const char* kInterfaceTexts[] = {"SERIAL", "", "MII", "RMII"};
constexpr const char* kLoopbackTexts[] = {"INTERNAL", "EXTERNAL", "NO"};
constexpr const char* kFlowControlTexts[] = {"FC", "AFC", "OFF"};

/// up|down 10|100 full|half mii|rmii|serial, then the options, of which later ones win.
bool ParseConfig(int argc, ArgVector argv, PortConfig& config) {
  if (!WordIs(argv[2], "=") || argc < kFirstOption || argc > kMostWords) return false;
  if (!ParseKeyword(argv[3], kLinkWords, config.link) ||
      !ParseKeyword(argv[4], kSpeedWords, config.speed) ||
      !ParseKeyword(argv[5], kDuplexWords, config.duplex) ||
      !ParseKeyword(argv[6], kInterfaceWords, config.interface)) {
    return false;
  }
  config.loopback = kLoopbackNone;
  config.flow_control = kFlowControlOff;
  for (int i = kFirstOption; i < argc; ++i) {
    if (!ParseKeyword(argv[i], kLoopbackWords, config.loopback) &&
        !ParseKeyword(argv[i], kFlowControlWords, config.flow_control) &&
        !ParseKeyword(argv[i], kVlanWords, config.vlan_aware)) {
      return false;
    }
  }
  return true;
}

void PrintConfig(const char* port, const PortConfig& config) {
  ConsolePuts("Port: ");
  ConsolePuts(port);
  ConsolePuts("\tLINK: ");
  ConsolePuts(config.link != 0 ? "UP" : "DOWN");
  ConsolePuts("\tSPEED: ");
  ConsolePuts(config.speed != 0 ? "100MBPS" : "10MBPS");
  ConsolePuts("\n\rDUPLEX: ");
  ConsolePuts(config.duplex != 0 ? "FULL" : "HALF");
  ConsolePuts("\tINTERFACE: ");
  ConsolePuts(kInterfaceTexts[config.interface]);
  ConsolePuts("\tLOOPBACK: ");
  ConsolePuts(kLoopbackTexts[config.loopback]);
  ConsolePuts("\n\rFLOW CONTROL: ");
  ConsolePuts(kFlowControlTexts[config.flow_control]);
  ConsolePuts("\tVLAN AWARE: ");
  ConsolePuts(config.vlan_aware != 0 ? "TRUE" : "FALSE");
  ConsolePuts("\n\r");
}

}  // namespace

int PortConfigCommand(int argc, ArgVector argv) {
  std::uint8_t port;
  PortConfig config{};
  if (argc < 2 || !ParseKeyword(argv[1], kMacPortWords, port)) return kUsage;
  if (argc > 2) {
    if (!ParseConfig(argc, argv, config)) return kUsage;
    if (Failed(WritePortConfig(port, config))) return Fail("MAC WritePortConfig failed\n\r");
  }
  if (Failed(ReadPortConfig(port, config))) return Fail("MAC ReadPortConfig failed\n\r");
  PrintConfig(argv[1], config);
  return kDone;
}

}  // namespace monitor
