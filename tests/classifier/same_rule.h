// Comparison of whole classifier rules.
#pragma once

#include <tuple>

#include "classifier/classifier.h"

/// Every field of the rule. Padding may differ, so rules are not compared as memory.
inline auto Fields(const monitor::ClsRule& rule) {
  return std::tie(rule.fieldMask, rule.etherType, rule.sip, rule.sipMask, rule.dip, rule.dipMask,
                  rule.sport, rule.dport, rule.protocol, rule.ds, rule.tag, rule.dds, rule.dtag,
                  rule.syn, rule.fin, rule.interfaces, rule.dclass, rule.dropHigh, rule.filter,
                  rule.toCpu, rule.ingress, rule.positive, rule.next, rule.counter, rule.smac,
                  rule.dmac, rule.vlanId, rule.spMask, rule.dpMask, rule.ack, rule.ingressTagged,
                  rule.smacValid, rule.dmacValid, rule.vlanValid, rule.ackValid, rule.itagValid,
                  rule.desiredVlanId, rule.desiredVlanForce, rule.desiredVlanTag, rule.valid,
                  rule.rst, rule.rstValid, rule.copyToCpu);
}

inline bool SameRule(const monitor::ClsRule& a, const monitor::ClsRule& b) {
  return Fields(a) == Fields(b);
}
