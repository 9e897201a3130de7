#include "classifier/classifier.h"
#include "core/port_id.h"

namespace monitor {
namespace {

void PrintInterfaces(const ClsRule& rule) {
  ConsolePuts("INTERFACE: ");
  if ((rule.interfaces & kPortWan) != 0) ConsolePuts("WAN  ");
  if ((rule.interfaces & kPortLan) != 0) ConsolePuts("LAN  ");
  if ((rule.interfaces & kPortDmz) != 0) ConsolePuts("DMZ  ");
  if ((rule.interfaces & kPortCpu) != 0) ConsolePuts("CPU");
  ConsolePuts("\n\r");
}

void PrintDrop(const ClsRule& rule) {
  ConsolePuts(rule.dropHigh != 0 ? "Enforce drop: high\n\r" : "Enforce drop: low\n\r");
}

struct OptionalLine {
  ClsPresence presence;
  void (*print)(const ClsRule& rule);
};

// clang-format off
constexpr OptionalLine kOptionalLines[] = {
    {kMatchEtherType,    [](const ClsRule& r) { Print("ETHERTYPE: %4x\n\r", r.etherType); }},
    {kMatchSip,          [](const ClsRule& r) { Print("SIP: %-15s  SIPMASK: %2x\n\r", IpText(r.sip), r.sipMask); }},
    {kMatchDip,          [](const ClsRule& r) { Print("DIP: %-15s  DIPMASK: %2x\n\r", IpText(r.dip), r.dipMask); }},
    {kMatchSport,        [](const ClsRule& r) { Print("SPORT: %4x  SPMASK: %2x\n\r", r.sport, r.spMask); }},
    {kMatchDport,        [](const ClsRule& r) { Print("DPORT: %4x  DPMASK: %2x\n\r", r.dport, r.dpMask); }},
    {kMatchProtocol,     [](const ClsRule& r) { Print("PROTOCOL: %2x\n\r", r.protocol); }},
    {kMatchDs,           [](const ClsRule& r) { Print("DS: %2x\n\r", r.ds); }},
    {kMatchTag,          [](const ClsRule& r) { Print("TAG: %2x\n\r", r.tag); }},
    {kMatchDds,          [](const ClsRule& r) { Print("DDS: %2x\n\r", r.dds); }},
    {kMatchDtag,         [](const ClsRule& r) { Print("DTAG: %2x\n\r", r.dtag); }},
    {kMatchClass,        [](const ClsRule& r) { Print("DCLASS: %2x\n\r", r.dclass); }},
    {kMatchInterfaces,   PrintInterfaces},
    {kMatchSyn,          [](const ClsRule& r) { Print("SYN: %2x\n\r", r.syn); }},
    {kMatchFin,          [](const ClsRule& r) { Print("FIN: %2x\n\r", r.fin); }},
    {&ClsRule::ackValid, [](const ClsRule& r) { Print("ACK: %2x\n\r", r.ack); }},
    {&ClsRule::rstValid, [](const ClsRule& r) { Print("RST: %2x\n\r", r.rst); }},
    {kMatchDrop,         PrintDrop},
};
// clang-format on

void PrintActions(const ClsRule& rule) {
  if (rule.filter != 0) ConsolePuts("FILTER\t");
  if (rule.toCpu != 0) ConsolePuts("FORWARD TO CPU\t");
  if (rule.copyToCpu != 0) ConsolePuts("COPY TO CPU\t");
  ConsolePuts(rule.ingress != 0 ? "INGRESS\t" : "EGRESS\t");
  ConsolePuts(rule.positive != 0 ? "POSITIVE\n\r" : "NEGATIVE\n\r");
}

/// No line end follows the digits: further output continues the line of the last address.
void PrintMacs(const ClsRule& rule) {
  if (rule.smacValid == 1) {
    ConsolePuts("\n\rSOURCE MAC: ");
    PrintMac(rule.smac);
  }
  if (rule.dmacValid == 1) {
    ConsolePuts("\n\rDESTINATION MAC: ");
    PrintMac(rule.dmac);
  }
}

void PrintVlans(const ClsRule& rule) {
  if (rule.vlanValid == 1) Print("VLAN ID: %2x\n\r", rule.vlanId);
  Print(" DESIRED VLAN ID: %2x  TAG: %2x  FORCE: %2x\n\r", rule.desiredVlanId, rule.desiredVlanTag,
        rule.desiredVlanForce);
  if (rule.itagValid == 1) {
    ConsolePuts(rule.ingressTagged == 1 ? "Ingress is tagged\n\r" : "Ingress is untagged\n\r");
  }
}

}  // namespace

void ClsRulePrint(const ClsRule& rule, unsigned index) {
  Print("INDEX: %2x\t", index);
  ConsolePuts(rule.valid != 0 ? "VALID\n\r" : "INVALID\n\r");
  PrintActions(rule);
  for (const OptionalLine& line : kOptionalLines) {
    if (line.presence.In(rule)) line.print(rule);
  }
  PrintMacs(rule);
  PrintVlans(rule);
  Print(" NEXT: %2x\n\r", rule.next);
  ConsolePuts("\n\r");
}

}  // namespace monitor
