#include "qos/control_command.h"

#include "mac/forward_control.h"

namespace monitor {
namespace {

/// A switch: its word, the member of the record that it sets, and how it is shown.
struct Switch {
  const char* word;
  std::uint8_t ForwardControl::*member;
  const char* label;
  const char* set = "ENABLE\n\r";
  const char* clear = "DISABLE\n\r";
};

/// In the order in which they are shown. The TTL switch disables what its label names.
// clang-format off
constexpr Switch kSwitches[] = {
    {"AGEOUTBM", &ForwardControl::ageoutbm, "Auto release ageout BM handles: "},
    {"FRDALLIP", &ForwardControl::frdallip, "Forward all IP packets in non-NAT mode: "},
    {"FRGNN", &ForwardControl::frgnn, "Filter out fragmented IP packets in no-NAT mode: "},
    {"MIRRLAN", &ForwardControl::mirrlan, "Mirror LAN to DMZ port: "},
    {"MIRRWAN", &ForwardControl::mirrwan, "Mirror WAN to DMZ port: "},
    {"DISTTL", &ForwardControl::disttl, "Decrement of TTL: ", "DISABLE\n\r", "ENABLE\n\r"},
    {"MTU", &ForwardControl::mtu, "Filter out PPPoE packets which exceed MTU: "},
    {"FRG", &ForwardControl::frg, "Filter out fragmented IP packets in NAT mode: "},
};
// clang-format on

constexpr std::array<Keyword, 3> kPppWords{{{"PROXY", 0}, {"ROUTING", 1}, {"IP", 2}}};
constexpr const char* kPppTexts[] = {"PPPoE proxy\n\r", "PPPoE routing\n\r", "IP routing\n\r",
                                     "Not allowed\n\r"};

/// Writes the record, then reads it back from the hardware.
bool Exchange(ForwardControl& control) {
  return !Failed(WriteForwardControl(control)) && !Failed(ReadForwardControl(control));
}

bool ParseSwitch(const char* word, const char* value, ForwardControl& control) {
  for (const Switch& row : kSwitches) {
    std::uint8_t on;
    if (!WordIs(word, row.word)) continue;
    if (!ParseHexDigit(value, on) || on > 1) return false;
    control.*row.member = on;
    return true;
  }
  return false;
}

/// f [ageoutbm 0|1] [frdallip 0|1] [frgnn 0|1] [mirrlan 0|1] [mirrwan 0|1] [disttl 0|1]
/// [mtu 0|1] [frg 0|1]
int Switches(int argc, ArgVector argv, ForwardControl& control) {
  if (argc > 2) {
    if (argc % 2 != 0) return kUsage;
    for (int i = 2; i < argc; i += 2) {
      if (!ParseSwitch(argv[i], argv[i + 1], control)) return kUsage;
    }
    if (!Exchange(control)) return kUsage;
  }
  for (const Switch& row : kSwitches) {
    ConsolePuts(row.label);
    ConsolePuts(control.*row.member != 0 ? row.set : row.clear);
  }
  return kDone;
}

/// mtu [<mtu>]
int Mtu(int argc, ArgVector argv, ForwardControl& control) {
  if (argc > 3) return kUsage;
  if (argc == 3 && (!ParseHex16(argv[2], control.mtuBytes) || !Exchange(control))) return kUsage;
  Print("MTU = %4x\n\r", control.mtuBytes);
  return kDone;
}

/// ppp [proxy|routing|ip]
int Ppp(int argc, ArgVector argv, ForwardControl& control) {
  if (argc > 3) return kUsage;
  if (argc == 3 && (!ParseKeyword(argv[2], kPppWords, control.pppMode) || !Exchange(control))) {
    return kUsage;
  }
  ConsolePuts("PPP Mode : ");
  ConsolePuts(kPppTexts[control.pppMode]);
  return kDone;
}

}  // namespace

int ControlCommand(int argc, ArgVector argv) {
  ForwardControl control{};
  if (Failed(ReadForwardControl(control)) || argc < 2) return kUsage;
  const char* const form = argv[1];
  if (WordIs(form, "F")) return Switches(argc, argv, control);
  if (WordIs(form, "MTU")) return Mtu(argc, argv, control);
  if (WordIs(form, "PPP")) return Ppp(argc, argv, control);
  return kUsage;
}

}  // namespace monitor
