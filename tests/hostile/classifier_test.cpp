// The classifier: rules, chain, counters, overflow bits, filter switch, shadow.
#include "hostile/explore.h"
#include "hostile/steps.h"

namespace hostile {
namespace {

using monitor::ClsOverflowMap;
using monitor::ClsRule;
using std::uint16_t;
using std::uint32_t;
using std::uint8_t;

/// Only the low 16 bits of a rule's number count.
bool IsRule(unsigned index) { return (index & 0xFFFF) <= 127; }

DriverStatus ReadStep(unsigned index) {
  W8(0x721, index & 0x7F);
  return Step(0x720, 0x04, 0xF6, 0x01);
}

DriverStatus WriteRuleStep() { return StepUnlocking(0x720, 0x0C, 0xCD, 0x02); }

DriverStatus ClsRead(unsigned index, ClsRule& rule) {
  if (!IsRule(index)) return kRefused;
  if (ReadStep(index) != kOk) return kNotReady;
  ClsRule read{};
  read.rst = rule.rst;
  read.copyToCpu = rule.copyToCpu;

  const uint32_t control = R32(0x71C);
  const unsigned flags1 = R8(0x718);
  const unsigned flags2 = R8(0x719);
  const unsigned flags3 = R8(0x754);
  const auto bit = [](uint32_t word, unsigned number) {
    return static_cast<uint8_t>(word >> number & 1);
  };
  unsigned present = 0;
  if (bit(control, 1) != 0) {
    present |= 0x0001;
    read.etherType = R16(0x700);
  }
  if (bit(control, 2) != 0) {
    present |= 0x0002;
    read.sip = R32(0x704);
    read.sipMask = R8(0x708);
  }
  if (bit(control, 3) != 0) {
    present |= 0x0004;
    read.dip = R32(0x70C);
    read.dipMask = R8(0x710);
  }
  if (bit(control, 4) != 0) {
    present |= 0x0008;
    read.sport = R16(0x714);
  }
  if (bit(control, 5) != 0) {
    present |= 0x0010;
    read.dport = R16(0x716);
  }
  if (bit(control, 6) != 0) {
    present |= 0x0020;
    read.protocol = R8(0x702);
  }
  if (bit(control, 7) != 0) {
    present |= 0x0040;
    read.ds = R8(0x703);
  }
  if (bit(control, 8) != 0) {
    present |= 0x0080;
    read.tag = flags1 & 0x07;
  }
  if (bit(control, 16) != 0) {
    present |= 0x0200;
    read.interfaces = flags2 & 0x0F;
  }
  if (bit(flags3, 2) != 0) {
    present |= 0x4000;
    read.dds = control >> 10 & 0x3F;
  }
  if (bit(control, 20) != 0) {
    present |= 0x8000;
    read.dtag = control >> 21 & 0x07;
  }
  if (bit(flags1, 6) != 0) {
    present |= 0x0400;
    read.syn = bit(flags1, 5);
  }
  if (bit(flags1, 4) != 0) {
    present |= 0x0800;
    read.fin = bit(flags1, 3);
  }
  if (bit(flags1, 7) != 0) {
    present |= 0x1000;
    read.dclass = flags3 >> 3 & 0x03;
  }
  if (bit(flags2, 7) != 0) {
    present |= 0x2000;
    read.dropHigh = bit(flags2, 6);
  }
  read.fieldMask = static_cast<uint16_t>(present);
  read.filter = bit(control, 18);
  read.toCpu = bit(control, 19);
  read.ingress = bit(flags2, 4);
  read.positive = bit(flags2, 5);
  read.next = static_cast<uint16_t>(bit(control, 9) != 0 ? 255 : control >> 24);
  read.counter = R32(0x724);
  read.valid = bit(control, 0);

  const unsigned valid = R8(0x755, 0x3F);
  read.smacValid = bit(valid, 0);
  read.dmacValid = bit(valid, 1);
  read.vlanValid = bit(valid, 2);
  read.ackValid = bit(valid, 3);
  read.itagValid = bit(valid, 4);
  read.rstValid = bit(valid, 5);
  if (read.ackValid != 0) read.ack = bit(flags3, 0);
  if (read.rstValid != 0) read.rst = bit(flags3, 5);
  if (read.itagValid != 0) read.ingressTagged = bit(flags3, 1);
  if (read.smacValid != 0) ReadAll(0x740, read.smac);
  if (read.dmacValid != 0) ReadAll(0x748, read.dmac);
  if (read.vlanValid != 0) read.vlanId = R16(0x750);
  read.spMask = R8(0x752) & 0x1F;
  read.dpMask = R8(0x753) & 0x1F;
  const uint16_t vlan = R16(0x756);
  read.desiredVlanId = vlan & 0x0FFF;
  read.desiredVlanForce = bit(vlan, 12);
  read.desiredVlanTag = bit(vlan, 13);
  rule = read;
  return kOk;
}

void StoreRule(const ClsRule& rule) {
  uint32_t control = 0x01;
  unsigned flags1 = 0;
  unsigned flags2 = 0;
  unsigned flags3 = 0;
  unsigned valid = 0;
  const auto has = [&](unsigned bit) { return (rule.fieldMask & bit) != 0; };
  if (has(0x0001)) {
    W16(0x700, rule.etherType);
    control |= 0x02;
  }
  if (has(0x0002)) {
    W32(0x704, rule.sip);
    W8(0x708, rule.sipMask);
    control |= 0x04;
  }
  if (has(0x0004)) {
    W32(0x70C, rule.dip);
    W8(0x710, rule.dipMask);
    control |= 0x08;
  }
  if (has(0x0008)) {
    W16(0x714, rule.sport);
    control |= 0x10;
  }
  if (has(0x0010)) {
    W16(0x716, rule.dport);
    control |= 0x20;
  }
  if (has(0x0020)) {
    W8(0x702, rule.protocol);
    control |= 0x40;
  }
  if (has(0x0040)) {
    W8(0x703, rule.ds);
    control |= 0x80;
  }
  if (has(0x0080)) {
    flags1 |= rule.tag & 7U;
    control |= 0x100;
  }
  if (has(0x4000)) {
    flags3 |= 0x04;
    control |= rule.dds * 0x400U & 0xFC00U;
  }
  if (has(0x8000)) control |= 0x100000U | (rule.dtag * 0x200000U & 0xE00000U);
  if (has(0x0400)) flags1 |= 0x40U | (rule.syn != 0 ? 0x20U : 0U);
  if (has(0x0800)) flags1 |= 0x10U | (rule.fin != 0 ? 0x08U : 0U);
  if (has(0x0200)) {
    control |= 0x10000;
    flags2 |= rule.interfaces & 0x0FU;
  }
  if (has(0x1000)) {
    flags1 |= 0x80;
    flags3 |= rule.dclass * 8U & 0x18U;
  }
  if (has(0x2000)) flags2 |= 0x80U | (rule.dropHigh != 0 ? 0x40U : 0U);
  if (rule.filter != 0) control |= 0x40000;
  if (rule.toCpu != 0) control |= 0x80000;
  if (rule.copyToCpu != 0) control |= 0x20000;
  if (rule.ingress != 0) flags2 |= 0x10;
  if (rule.positive != 0) flags2 |= 0x20;
  if (rule.next == 255) control |= 0x200;
  control |= static_cast<uint32_t>(rule.next) << 24;
  W32(0x724, rule.counter);
  W8(0x718, flags1);
  W8(0x719, flags2);
  W32(0x71C, control);

  if (rule.smacValid != 0) {
    valid |= 0x01;
    WriteAll(0x740, rule.smac);
  }
  if (rule.dmacValid != 0) {
    valid |= 0x02;
    WriteAll(0x748, rule.dmac);
  }
  if (rule.vlanValid != 0) {
    valid |= 0x04;
    W16(0x750, rule.vlanId);
  }
  W8(0x752, rule.spMask & 0x1FU);
  W8(0x753, rule.dpMask & 0x1FU);
  if (rule.ackValid != 0) {
    valid |= 0x08;
    flags3 |= rule.ack;
  }
  if (rule.itagValid != 0) {
    valid |= 0x10;
    flags3 |= rule.ingressTagged * 2U;
  }
  if (rule.rstValid != 0) {
    valid |= 0x20;
    flags3 |= rule.rst * 32U & 0x20U;
  }
  W8(0x755, valid);
  W8(0x754, flags3);
  W16(0x756, (rule.desiredVlanId & 0xFFFU) | (rule.desiredVlanForce & 1U) << 12 |
                 (rule.desiredVlanTag & 1U) << 13);
}

/// `shadow` is the shadow of the rule; ignored for a number that no rule has.
DriverStatus ClsWrite(unsigned index, ClsRule& rule, ClsRule& shadow) {
  if (!IsRule(index)) return kRefused;
  Lock();
  W8(0x721, index & 0x7F);
  StoreRule(rule);
  if (WriteRuleStep() != kOk) return kNotReady;
  rule.valid = 1;
  shadow = rule;
  return kOk;
}

DriverStatus ClsDelete(unsigned index, ClsRule& shadow) {
  if (!IsRule(index)) return kRefused;
  if (ReadStep(index) != kOk) return kNotReady;
  const uint32_t control = R32(0x71C);
  Lock();
  W8(0x721, index & 0x7F);
  W32(0x71C, control & ~1U);
  if (WriteRuleStep() != kOk) return kNotReady;
  shadow.valid = 0;
  return kOk;
}

/// Gives the rule's entry of the driver's shadow to an operation and takes it back.
template <typename Operation>
DriverStatus WithShadow(unsigned index, ClsRule& shadow, const Operation& operation) {
  ClsRule& entry = monitor::ClsShadow[index & 0x7F];
  entry = shadow;
  const DriverStatus status = operation();
  shadow = entry;
  return status;
}

DriverStatus DriverWrite(unsigned index, ClsRule& rule, ClsRule& shadow) {
  return WithShadow(index, shadow, [&] { return monitor::ClsWrite(index, rule); });
}

DriverStatus DriverDelete(unsigned index, ClsRule& shadow) {
  return WithShadow(index, shadow, [&] { return monitor::ClsDelete(index); });
}

DriverStatus ClsReadFirst(uint16_t& head) {
  head = R8(0x722) & 0x7F;
  return kOk;
}

DriverStatus ClsWriteFirst(uint16_t head) {
  if (head > 127) return kRefused;
  W8(0x722, head);
  return kOk;
}

DriverStatus ClsNext(unsigned index, uint16_t next) {
  if (!IsRule(index)) return kRefused;
  if (ReadStep(index) != kOk) return kNotReady;
  uint32_t control = R32(0x71C) & 0x00FFFFFF;
  Lock();
  W8(0x721, index & 0x3F);
  if (next == 255) {
    control |= 0x200;
  } else {
    control = (control & ~0x200U) | static_cast<uint32_t>(next) << 24;
  }
  W32(0x71C, control);
  return WriteRuleStep();
}

DriverStatus ClsReadCounter(unsigned index, uint32_t& value) {
  if (!IsRule(index)) return kRefused;
  if (ReadStep(index) != kOk) return kNotReady;
  value = R32(0x724);
  return kOk;
}

DriverStatus CounterStep(bool restore_done) {
  if (!Ready(0x720)) {
    Unlock();
    return kNotReady;
  }
  W8(0x720, (R8(0x720) & 0x30) | 0x2C);
  Clear(0x720, 0x04);
  if (restore_done) W8(0x720, 0x03);
  Unlock();
  return Done(0x720, 0x02);
}

DriverStatus ClsWriteCounter(unsigned index, uint32_t value) {
  if (!IsRule(index)) return kRefused;
  Lock();
  W8(0x721, index & 0x7F);
  W32(0x724, value);
  return CounterStep(true);
}

DriverStatus ClsCheckOverflow(ClsOverflowMap& map) {
  if (Step(0x720, 0x04, 0xF6, 0x01) != kOk) return kNotReady;
  ReadAll(0x728, map);
  return kOk;
}

DriverStatus ClsClearOverflow(const ClsOverflowMap& map) {
  Lock();
  WriteAll(0x728, map);
  return CounterStep(false);
}

DriverStatus ClsReadFilter(uint8_t& on) {
  on = R8(0x105, 0xFF) >> 5 & 1;
  return kOk;
}

DriverStatus ClsWriteFilter(uint8_t on) {
  Lock();
  SetOrClear(0x105, 0x20, on != 0);
  Unlock();
  return kOk;
}

/// Of the whole shadow, the first and the last rule are looked at.
DriverStatus ClsClearShadow(ClsRule& first, ClsRule& last) {
  first = last = ClsRule{};
  return kOk;
}

DriverStatus DriverClearShadow(ClsRule& first, ClsRule& last) {
  monitor::ClsShadow.front() = first;
  monitor::ClsShadow.back() = last;
  monitor::ClsClearShadow();
  first = monitor::ClsShadow.front();
  last = monitor::ClsShadow.back();
  return kOk;
}

constexpr unsigned kRules[] = {0, 5, 63, 64, 70, 127, 128, 255, 0xFFFF, 0x10000, 0x10046, ~0U};
constexpr unsigned kRounds = 16;  ///< Rules full of junk for each number.

TEST(Hostile, ClsRead) {
  for (const unsigned index : kRules) {
    Explore(ClsRead, monitor::ClsRead, index, Junk<ClsRule>());
  }
}
TEST(Hostile, ClsWrite) {
  for (const unsigned index : kRules) {
    for (unsigned round = 0; round < kRounds; ++round) {
      auto rule = Junk<ClsRule>();
      if (round < 4) rule.next = static_cast<uint16_t>(round < 2 ? 255 : round);
      Explore(ClsWrite, DriverWrite, index, rule, Junk<ClsRule>());
    }
    Explore(ClsWrite, DriverWrite, index, ClsRule{}, Junk<ClsRule>());
  }
  // Each field alone.
  for (unsigned bit = 0; bit < 16; ++bit) {
    auto rule = Junk<ClsRule>();
    rule.fieldMask = static_cast<uint16_t>(1U << bit);
    rule.smacValid = rule.dmacValid = rule.vlanValid = 0;
    rule.ackValid = rule.itagValid = rule.rstValid = 0;
    Explore(ClsWrite, DriverWrite, bit, rule, Junk<ClsRule>());
  }
  for (uint8_t ClsRule::*valid :
       {&ClsRule::smacValid, &ClsRule::dmacValid, &ClsRule::vlanValid, &ClsRule::ackValid,
        &ClsRule::itagValid, &ClsRule::rstValid, &ClsRule::filter, &ClsRule::toCpu,
        &ClsRule::copyToCpu, &ClsRule::ingress, &ClsRule::positive}) {
    ClsRule rule{};
    rule.ack = rule.ingressTagged = rule.rst = 3;
    rule.*valid = 1;
    Explore(ClsWrite, DriverWrite, 99U, rule, Junk<ClsRule>());
  }
}
TEST(Hostile, ClsDelete) {
  for (const unsigned index : kRules) Explore(ClsDelete, DriverDelete, index, Junk<ClsRule>());
}
TEST(Hostile, ClsReadFirst) { Explore(ClsReadFirst, monitor::ClsReadFirst, Junk<uint16_t>()); }
TEST(Hostile, ClsWriteFirst) {
  for (const unsigned head : {0U, 1U, 63U, 64U, 127U, 128U, 255U, 256U, 0xFFFFU}) {
    Explore(ClsWriteFirst, monitor::ClsWriteFirst, static_cast<uint16_t>(head));
  }
}
TEST(Hostile, ClsNext) {
  for (const unsigned index : kRules) {
    for (const unsigned next : {0U, 70U, 254U, 255U, 0x1FFU}) {
      Explore(ClsNext, monitor::ClsNext, index, static_cast<uint16_t>(next));
    }
  }
}
TEST(Hostile, ClsReadCounter) {
  for (const unsigned index : kRules) {
    Explore(ClsReadCounter, monitor::ClsReadCounter, index, Junk<uint32_t>());
  }
}
TEST(Hostile, ClsWriteCounter) {
  for (const unsigned index : kRules) {
    Explore(ClsWriteCounter, monitor::ClsWriteCounter, index, Junk<uint32_t>());
  }
}
TEST(Hostile, ClsCheckOverflow) {
  Explore(ClsCheckOverflow, monitor::ClsCheckOverflow, Junk<ClsOverflowMap>());
}
TEST(Hostile, ClsClearOverflow) {
  Explore(ClsClearOverflow, monitor::ClsClearOverflow, Junk<ClsOverflowMap>());
}
TEST(Hostile, ClsReadFilter) { Explore(ClsReadFilter, monitor::ClsReadFilter, Junk<uint8_t>()); }
TEST(Hostile, ClsWriteFilter) {
  for (const uint8_t on : Bytes{0, 1, 2, 128, 255}) {
    Explore(ClsWriteFilter, monitor::ClsWriteFilter, on);
  }
}

TEST(Hostile, ClsClearShadow) {
  Explore(ClsClearShadow, DriverClearShadow, Junk<ClsRule>(), Junk<ClsRule>());
}

}  // namespace
}  // namespace hostile
