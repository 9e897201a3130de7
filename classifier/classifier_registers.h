#pragma once

#include "core/engine_fields.h"
#include "core/value_names.h"

namespace monitor {

// What frames are compared with.
inline constexpr Reg16 kClsEtherType{0x700, "CLS_ETHER_TYPE", "Ethernet type"};
inline constexpr Reg8 kClsProtocol{0x702, "CLS_PROTOCOL", "IP protocol"};
inline constexpr Reg8 kClsDs{0x703, "CLS_DS", "DS byte"};
inline constexpr Reg32 kClsSip{0x704, "CLS_SIP", "source address"};
inline constexpr Reg8 kClsSipMask{0x708, "CLS_SIP_MASK", "source address mask"};
inline constexpr Reg32 kClsDip{0x70C, "CLS_DIP", "destination address"};
inline constexpr Reg8 kClsDipMask{0x710, "CLS_DIP_MASK", "destination address mask"};
inline constexpr Reg16 kClsSport{0x714, "CLS_SPORT", "source port"};
inline constexpr Reg16 kClsDport{0x716, "CLS_DPORT", "destination port"};

inline constexpr Reg8 kClsFlags1{0x718, "CLS_FLAGS1", "class valid, TCP flags, tag"};
inline constexpr Field kClsClassValid{7, 7, "class_valid", "class is assigned"};
inline constexpr Field kClsSynValid{6, 6, "syn_valid", "SYN is compared"};
inline constexpr Field kClsSyn{5, 5, "syn", "SYN"};
inline constexpr Field kClsFinValid{4, 4, "fin_valid", "FIN is compared"};
inline constexpr Field kClsFin{3, 3, "fin", "FIN"};
inline constexpr Field kClsTag{2, 0, "tag", "802.1p tag"};

inline constexpr Reg8 kClsFlags2{0x719, "CLS_FLAGS2", "drop precedence, sense, interfaces"};
inline constexpr Field kClsDropValid{7, 7, "drop_valid", "drop precedence is enforced"};
inline constexpr Field kClsDropHigh{6, 6, "drop_high", "drop precedence"};
inline constexpr Field kClsPositive{5, 5, "positive", "sense of the match"};
inline constexpr Field kClsIngress{4, 4, "ingress", "where the rule applies"};
inline constexpr Field kClsInterfaces{3, 0, "interfaces", "ingress set"};

inline constexpr Reg32 kClsControl{0x71C, "CLS_CONTROL", "link, actions, valid bits"};
inline constexpr Field kClsNext{31, 24, "next", "next rule of the chain"};
inline constexpr Field kClsDtag{23, 21, "dtag", "desired tag"};
inline constexpr Field kClsDtagValid{20, 20, "dtag_valid", "tag is rewritten"};
inline constexpr Field kClsToCpu{19, 19, "to_cpu", "forward to CPU"};
inline constexpr Field kClsFilter{18, 18, "filter", "filter"};
inline constexpr Field kClsCopyToCpu{17, 17, "copy_to_cpu", "copy to CPU"};
inline constexpr Field kClsInterfacesValid{16, 16, "interfaces_valid", "ingress set is compared"};
inline constexpr Field kClsDds{15, 10, "dds", "desired DS value"};
inline constexpr Field kClsEndOfChain{9, 9, "end", "no next rule"};
inline constexpr Field kClsTagValid{8, 8, "tag_valid", "tag is compared"};
inline constexpr Field kClsDsValid{7, 7, "ds_valid", "DS byte is compared"};
inline constexpr Field kClsProtocolValid{6, 6, "protocol_valid", "protocol is compared"};
inline constexpr Field kClsDportValid{5, 5, "dport_valid", "destination port is compared"};
inline constexpr Field kClsSportValid{4, 4, "sport_valid", "source port is compared"};
inline constexpr Field kClsDipValid{3, 3, "dip_valid", "destination address is compared"};
inline constexpr Field kClsSipValid{2, 2, "sip_valid", "source address is compared"};
inline constexpr Field kClsEtherTypeValid{1, 1, "ether_type_valid", "Ethernet type is compared"};
inline constexpr Field kClsRuleValid{0, 0, "valid", "rule in use"};

inline constexpr Reg8 kClsCommand{0x720, "CLS_COMMAND", "engine command and status"};
inline constexpr Field kClsCounterSelect{5, 5, "counter",
                                         "a write touches only counter and overflow"};
inline constexpr Reg8 kClsIndex{0x721, "CLS_INDEX", "rule that a step works on"};
inline constexpr Reg8 kClsHead{0x722, "CLS_HEAD", "first rule of the chain"};
inline constexpr Field kClsRuleNumber{6, 0, "rule", "of index and chain head"};
inline constexpr Reg32 kClsCounter{0x724, "CLS_COUNTER", "frames that matched the rule"};
inline constexpr RegBytes<9> kClsOverflow{0x728, "CLS_OVERFLOW",
                                          "counter overflow, rule 0x7F first; 1 clears"};

inline constexpr RegBytes<6> kClsSmac{0x740, "CLS_SMAC", "source MAC address"};
inline constexpr RegBytes<6> kClsDmac{0x748, "CLS_DMAC", "destination MAC address"};
inline constexpr Reg16 kClsVlan{0x750, "CLS_VLAN", "input VLAN id"};
inline constexpr Reg8 kClsSpMask{0x752, "CLS_SP_MASK", "source port mask"};
inline constexpr Reg8 kClsDpMask{0x753, "CLS_DP_MASK", "destination port mask"};
inline constexpr Field kClsPortMask{4, 0, "mask", "of either port"};

inline constexpr Reg8 kClsFlags3{0x754, "CLS_FLAGS3", "RST, class, ingress tag, ACK"};
inline constexpr Field kClsRst{5, 5, "rst", "RST"};
inline constexpr Field kClsClass{4, 3, "class", "class to assign"};
inline constexpr Field kClsDdsValid{2, 2, "dds_valid", "DS is rewritten"};
inline constexpr Field kClsIngressTagged{1, 1, "ingress_tagged", "how the frame must arrive"};
inline constexpr Field kClsAck{0, 0, "ack", "ACK"};

inline constexpr Reg8 kClsExtendedValid{0x755, "CLS_EXTENDED_VALID", "more valid bits"};
inline constexpr Field kClsRstValid{5, 5, "rst_valid", "RST is compared"};
inline constexpr Field kClsItagValid{4, 4, "itag_valid", "ingress tag is compared"};
inline constexpr Field kClsAckValid{3, 3, "ack_valid", "ACK is compared"};
inline constexpr Field kClsVlanValid{2, 2, "vlan_valid", "input VLAN is compared"};
inline constexpr Field kClsDmacValid{1, 1, "dmac_valid", "destination MAC is compared"};
inline constexpr Field kClsSmacValid{0, 0, "smac_valid", "source MAC is compared"};

inline constexpr Reg16 kClsDesiredVlan{0x756, "CLS_DESIRED_VLAN", "VLAN of matching frames"};
inline constexpr Field kClsDesiredVlanTag{13, 13, "tag", "tag the frame"};
inline constexpr Field kClsDesiredVlanForce{12, 12, "force", "force the VLAN"};
inline constexpr Field kClsDesiredVlanId{11, 0, "id", "VLAN id to put on the frame"};

inline constexpr ValueName kClsSenseNames[] = {
    {0, "negated", "negated"},
    {1, "positive", "positive"},
};
inline constexpr ValueName kClsSideNames[] = {{0, "egress", "egress"}, {1, "ingress", "ingress"}};
inline constexpr ValueName kClsTaggedNames[] = {
    {0, "untagged", "untagged"},
    {1, "tagged", "tagged"},
};

inline constexpr RegisterRow kClsRegisters[] = {
    {kClsEtherType, ValueKind::kEtherType},
    {kClsProtocol, ValueKind::kIpProtocol},
    kClsDs,
    {kClsSip, ValueKind::kIpv4Address},
    kClsSipMask,
    {kClsDip, ValueKind::kIpv4Address},
    kClsDipMask,
    {kClsSport, ValueKind::kTransportPort},
    {kClsDport, ValueKind::kTransportPort},
    {kClsFlags1, {kClsClassValid, kClsSynValid, kClsSyn, kClsFinValid, kClsFin, kClsTag}},
    {kClsFlags2,
     {kClsDropValid,
      {kClsDropHigh, kPriorityNames},
      {kClsPositive, kClsSenseNames},
      {kClsIngress, kClsSideNames},
      {kClsInterfaces, kAnyPorts}}},
    {kClsControl,
     {{kClsNext, ValueKind::kIndex},
      kClsDtag,
      kClsDtagValid,
      kClsToCpu,
      kClsFilter,
      kClsCopyToCpu,
      kClsInterfacesValid,
      kClsDds,
      kClsEndOfChain,
      kClsTagValid,
      kClsDsValid,
      kClsProtocolValid,
      kClsDportValid,
      kClsSportValid,
      kClsDipValid,
      kClsSipValid,
      kClsEtherTypeValid,
      kClsRuleValid}},
    {kClsCommand,
     {kClsCounterSelect,
      {kEngineWrite, kDirectionNames},
      kEngineStart,
      kEngineWriteReady,
      kEngineReadReady}},
    {kClsIndex, {{kClsRuleNumber, ValueKind::kIndex}}},
    {kClsHead, {{kClsRuleNumber, ValueKind::kIndex}}},
    {kClsCounter, ValueKind::kCounter},
    {kClsOverflow, ValueKind::kBits},
    {kClsSmac, ValueKind::kMacAddress},
    {kClsDmac, ValueKind::kMacAddress},
    {kClsVlan, ValueKind::kVlanId},
    {kClsSpMask, {kClsPortMask}},
    {kClsDpMask, {kClsPortMask}},
    {kClsFlags3, {kClsRst, kClsClass, kClsDdsValid, {kClsIngressTagged, kClsTaggedNames}, kClsAck}},
    {kClsExtendedValid,
     {kClsRstValid, kClsItagValid, kClsAckValid, kClsVlanValid, kClsDmacValid, kClsSmacValid}},
    {kClsDesiredVlan,
     {kClsDesiredVlanTag, kClsDesiredVlanForce, {kClsDesiredVlanId, ValueKind::kVlanId}}},
};

}  // namespace monitor
