// A rule of the classifier, and the registers that hold it.
#pragma once

#include "chip/entry_values.h"
#include "classifier/classifier_registers.h"

namespace chip {

struct Rule {
  // What frames are compared with, if the member `..._valid` says so.
  std::uint16_t ether_type = 0;
  std::uint8_t protocol = 0;
  std::uint8_t ds = 0;
  std::uint32_t sip = 0;
  std::uint8_t sip_mask = 0;  ///< The masks are lengths of prefixes, as they were written.
  std::uint32_t dip = 0;
  std::uint8_t dip_mask = 0;
  std::uint16_t sport = 0;
  std::uint8_t sp_mask = 0;
  std::uint16_t dport = 0;
  std::uint8_t dp_mask = 0;
  std::array<std::uint8_t, 6> smac{};
  std::array<std::uint8_t, 6> dmac{};
  std::uint16_t vlan = 0;
  std::uint8_t tag = 0;
  std::uint8_t interfaces = 0;  ///< Set of ports: 1 WAN, 2 LAN, 4 DMZ, 8 CPU.
  bool ingress_tagged = false;
  bool syn = false;
  bool fin = false;
  bool ack = false;
  bool rst = false;

  bool ether_type_valid = false;
  bool protocol_valid = false;
  bool ds_valid = false;
  bool sip_valid = false;
  bool dip_valid = false;
  bool sport_valid = false;
  bool dport_valid = false;
  bool smac_valid = false;
  bool dmac_valid = false;
  bool vlan_valid = false;
  bool tag_valid = false;
  bool interfaces_valid = false;
  bool itag_valid = false;
  bool syn_valid = false;
  bool fin_valid = false;
  bool ack_valid = false;
  bool rst_valid = false;

  // What happens to those that match.
  bool filter = false;
  bool to_cpu = false;
  bool copy_to_cpu = false;
  bool class_valid = false;
  std::uint8_t traffic_class = 0;
  bool drop_valid = false;
  bool drop_high = false;
  bool dds_valid = false;
  std::uint8_t dds = 0;
  bool dtag_valid = false;
  std::uint8_t dtag = 0;
  bool desired_vlan_force = false;
  bool desired_vlan_tag = false;
  std::uint16_t desired_vlan = 0;

  bool positive = false;  ///< Else the match is negated.
  bool ingress = false;   ///< Applies at ingress, else at egress.
  std::uint8_t next = 0;
  bool end = false;  ///< There is no next rule.
  bool valid = false;
  std::uint8_t flags3_rest = 0;
  std::uint8_t extended_valid_rest = 0;
  std::uint8_t desired_vlan_rest = 0;
  std::uint32_t counter = 0;

  bool operator==(const Rule&) const = default;

  template <typename Entry, typename Visit>
  static void List(Entry& rule, Visit visit) {
    ListValues(rule, visit);
    ListFlags(rule, visit);
    ListControl(rule, visit);
    ListExtension(rule, visit);
    visit(monitor::kClsCounter, As<Noted::kCounter>("counter", rule.counter));
  }

 private:
  template <typename Entry, typename Visit>
  static void ListValues(Entry& rule, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    visit(kClsEtherType, As<kHex>("ether_type", rule.ether_type));
    visit(kClsProtocol, As<kHex>("protocol", rule.protocol));
    visit(kClsDs, As<kHex>("ds", rule.ds));
    visit(kClsSip, As<kAddress>("sip", rule.sip));
    visit(kClsSipMask, As<kNumber>("sip_mask", rule.sip_mask));
    visit(kClsDip, As<kAddress>("dip", rule.dip));
    visit(kClsDipMask, As<kNumber>("dip_mask", rule.dip_mask));
    visit(kClsSport, As<kHex>("sport", rule.sport));
    visit(kClsSpMask, As<kNumber>("sp_mask", rule.sp_mask));
    visit(kClsDport, As<kHex>("dport", rule.dport));
    visit(kClsDpMask, As<kNumber>("dp_mask", rule.dp_mask));
    visit(kClsSmac, As<kMac>("smac", rule.smac));
    visit(kClsDmac, As<kMac>("dmac", rule.dmac));
    visit(kClsVlan, As<kHex>("vlan", rule.vlan));
  }

  template <typename Entry, typename Visit>
  static void ListFlags(Entry& rule, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    visit(kClsFlags1, As<kNumber>(kClsTag, rule.tag), As<kFlag>(kClsSyn, rule.syn),
          As<kFlag>(kClsSynValid, rule.syn_valid), As<kFlag>(kClsFin, rule.fin),
          As<kFlag>(kClsFinValid, rule.fin_valid), As<kFlag>(kClsClassValid, rule.class_valid));
    visit(kClsFlags2, As<kPorts>(kClsInterfaces, rule.interfaces),
          As<kFlag>(kClsIngress, rule.ingress), As<kFlag>(kClsPositive, rule.positive),
          As<kFlag>(kClsDropValid, rule.drop_valid), As<kFlag>(kClsDropHigh, rule.drop_high));
    visit(kClsFlags3, As<kFlag>(kClsAck, rule.ack), As<kFlag>(kClsRst, rule.rst),
          As<kFlag>(kClsIngressTagged, rule.ingress_tagged),
          As<kFlag>(kClsDdsValid, rule.dds_valid), As<kNumber>(kClsClass, rule.traffic_class),
          As<kRest>({"flags3_rest", {7, 6}}, rule.flags3_rest));
  }

  template <typename Entry, typename Visit>
  static void ListControl(Entry& rule, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    visit(kClsControl, As<kFlag>(kClsRuleValid, rule.valid),
          As<kFlag>(kClsEtherTypeValid, rule.ether_type_valid),
          As<kFlag>(kClsSipValid, rule.sip_valid), As<kFlag>(kClsDipValid, rule.dip_valid),
          As<kFlag>(kClsSportValid, rule.sport_valid), As<kFlag>(kClsDportValid, rule.dport_valid),
          As<kFlag>(kClsProtocolValid, rule.protocol_valid), As<kFlag>(kClsDsValid, rule.ds_valid),
          As<kFlag>(kClsTagValid, rule.tag_valid), As<kFlag>(kClsEndOfChain, rule.end),
          As<kHex>(kClsDds, rule.dds), As<kFlag>(kClsInterfacesValid, rule.interfaces_valid),
          As<kFlag>(kClsCopyToCpu, rule.copy_to_cpu), As<kFlag>(kClsFilter, rule.filter),
          As<kFlag>(kClsToCpu, rule.to_cpu), As<kFlag>(kClsDtagValid, rule.dtag_valid),
          As<kNumber>(kClsDtag, rule.dtag), As<kHex>(kClsNext, rule.next));
  }

  template <typename Entry, typename Visit>
  static void ListExtension(Entry& rule, Visit visit) {
    using namespace monitor;  // NOLINT: the register names
    using enum Noted;
    visit(kClsExtendedValid, As<kFlag>(kClsSmacValid, rule.smac_valid),
          As<kFlag>(kClsDmacValid, rule.dmac_valid), As<kFlag>(kClsVlanValid, rule.vlan_valid),
          As<kFlag>(kClsAckValid, rule.ack_valid), As<kFlag>(kClsItagValid, rule.itag_valid),
          As<kFlag>(kClsRstValid, rule.rst_valid),
          As<kRest>({"extended_valid_rest", {7, 6}}, rule.extended_valid_rest));
    visit(kClsDesiredVlan, As<kHex>({"desired_vlan", kClsDesiredVlanId}, rule.desired_vlan),
          As<kFlag>({"desired_vlan_force", kClsDesiredVlanForce}, rule.desired_vlan_force),
          As<kFlag>({"desired_vlan_tag", kClsDesiredVlanTag}, rule.desired_vlan_tag),
          As<kRest>({"desired_vlan_rest", {15, 14}}, rule.desired_vlan_rest));
  }
};

}  // namespace chip
