#include "classifier/classifier.h"

#include "classifier/classifier_registers.h"
#include "classifier/rule_words.h"
#include "core/engine.h"
#include "core/filter_registers.h"
#include "core/filter_switch.h"
#include "core/irq_guard.h"

namespace monitor {

std::array<ClsRule, kClsRules> ClsShadow;

namespace {

// Bits of the command byte without a meaning of their own.
constexpr Field kUpperBits{7, 6};
constexpr Field kBit4{4, 4};

// A rule write clears the counter select and bit 4; a counter write sets the select, keeps bit 4
// and clears both done bits.
constexpr EngineStep kReadRule = ReadStep(kClsCommand);
constexpr EngineStep kWriteRule =
    WriteStep(kClsCommand, {.clear = kClsCounterSelect.Mask() | kBit4.Mask()});
constexpr EngineStep kWriteCounter = WriteStep(
    kClsCommand,
    {.set = kClsCounterSelect.Mask(), .clear = kUpperBits.Mask() | kEngineReadReady.Mask()});

/// Both done bits: what a counter write of one rule leaves in the command byte.
constexpr std::uint8_t kIdle = kEngineReadReady.Mask() | kEngineWriteReady.Mask();

/// Rules that a relink can reach.
constexpr unsigned kRelinkMask = 0x3F;

constexpr bool IsRule(unsigned index) { return (index & 0xFFFF) < kClsRules; }

void SelectRule(unsigned index) { Write(kClsIndex, kClsRuleNumber.Put(index)); }

bool Has(const ClsRule& rule, ClsMatch field) { return (rule.fieldMask & field) != 0; }

/// Reads the rule into the data registers.
[[nodiscard]] DriverStatus FetchRule(unsigned index) {
  SelectRule(index);
  return RunEngine(kReadRule);
}

void ReadMatchRegisters(ClsRule& rule) {
  if (Has(rule, kMatchEtherType)) rule.etherType = Read(kClsEtherType);
  if (Has(rule, kMatchSip)) {
    rule.sip = Read(kClsSip);
    rule.sipMask = Read(kClsSipMask);
  }
  if (Has(rule, kMatchDip)) {
    rule.dip = Read(kClsDip);
    rule.dipMask = Read(kClsDipMask);
  }
  if (Has(rule, kMatchSport)) rule.sport = Read(kClsSport);
  if (Has(rule, kMatchDport)) rule.dport = Read(kClsDport);
  if (Has(rule, kMatchProtocol)) rule.protocol = Read(kClsProtocol);
  if (Has(rule, kMatchDs)) rule.ds = Read(kClsDs);
}

void WriteMatchRegisters(const ClsRule& rule) {
  if (Has(rule, kMatchEtherType)) Write(kClsEtherType, rule.etherType);
  if (Has(rule, kMatchSip)) {
    Write(kClsSip, rule.sip);
    Write(kClsSipMask, rule.sipMask);
  }
  if (Has(rule, kMatchDip)) {
    Write(kClsDip, rule.dip);
    Write(kClsDipMask, rule.dipMask);
  }
  if (Has(rule, kMatchSport)) Write(kClsSport, rule.sport);
  if (Has(rule, kMatchDport)) Write(kClsDport, rule.dport);
  if (Has(rule, kMatchProtocol)) Write(kClsProtocol, rule.protocol);
  if (Has(rule, kMatchDs)) Write(kClsDs, rule.ds);
}

}  // namespace

void ClsClearShadow() { ClsShadow.fill({}); }

DriverStatus ClsRead(unsigned index, ClsRule& rule) {
  if (!IsRule(index)) return DriverStatus::kRefused;
  const DriverStatus status = FetchRule(index);
  if (Failed(status)) return status;

  const std::uint8_t rst = rule.rst;
  const std::uint8_t copy_to_cpu = rule.copyToCpu;
  rule = {};
  rule.rst = rst;
  rule.copyToCpu = copy_to_cpu;

  RuleWords words;
  words.control = Read(kClsControl);
  words.flags1 = Read(kClsFlags1);
  words.flags2 = Read(kClsFlags2);
  words.flags3 = Read(kClsFlags3);
  DecodeMatch(words, rule);
  ReadMatchRegisters(rule);
  rule.counter = Read(kClsCounter);
  words.extendedValid = Read(kClsExtendedValid);
  DecodeExtended(words, rule);
  if (rule.smacValid != 0) ReadBytes(kClsSmac, rule.smac);
  if (rule.dmacValid != 0) ReadBytes(kClsDmac, rule.dmac);
  if (rule.vlanValid != 0) rule.vlanId = Read(kClsVlan);
  rule.spMask = kClsPortMask.Get(Read(kClsSpMask));
  rule.dpMask = kClsPortMask.Get(Read(kClsDpMask));
  words.desiredVlan = Read(kClsDesiredVlan);
  DecodeCommon(words, rule);
  return DriverStatus::kOk;
}

DriverStatus ClsWrite(unsigned index, ClsRule& rule) {
  if (!IsRule(index)) return DriverStatus::kRefused;
  const RuleWords words = EncodeRule(rule);
  IrqGuard lock;
  SelectRule(index);
  WriteMatchRegisters(rule);
  Write(kClsCounter, rule.counter);
  Write(kClsFlags1, static_cast<std::uint8_t>(words.flags1));
  Write(kClsFlags2, static_cast<std::uint8_t>(words.flags2));
  Write(kClsControl, words.control);
  if (rule.smacValid != 0) WriteBytes(kClsSmac, rule.smac);
  if (rule.dmacValid != 0) WriteBytes(kClsDmac, rule.dmac);
  if (rule.vlanValid != 0) Write(kClsVlan, rule.vlanId);
  Write(kClsSpMask, kClsPortMask.Put(rule.spMask));
  Write(kClsDpMask, kClsPortMask.Put(rule.dpMask));
  Write(kClsExtendedValid, static_cast<std::uint8_t>(words.extendedValid));
  Write(kClsFlags3, static_cast<std::uint8_t>(words.flags3));
  Write(kClsDesiredVlan, static_cast<std::uint16_t>(words.desiredVlan));
  const DriverStatus status = RunEngineUnlocking(kWriteRule, lock);
  if (Failed(status)) return status;

  rule.valid = 1;
  ClsShadow[kClsRuleNumber.Put(index)] = rule;
  return DriverStatus::kOk;
}

DriverStatus ClsDelete(unsigned index) {
  if (!IsRule(index)) return DriverStatus::kRefused;
  DriverStatus status = FetchRule(index);
  if (Failed(status)) return status;

  const std::uint32_t control = Read(kClsControl);
  IrqGuard lock;
  SelectRule(index);
  Write(kClsControl, control & ~kClsRuleValid.Mask<std::uint32_t>());
  status = RunEngineUnlocking(kWriteRule, lock);
  if (Failed(status)) return status;

  ClsShadow[kClsRuleNumber.Put(index)].valid = 0;
  return DriverStatus::kOk;
}

DriverStatus ClsReadFirst(std::uint16_t& head) {
  head = kClsRuleNumber.Get(Read(kClsHead));
  return DriverStatus::kOk;
}

DriverStatus ClsWriteFirst(std::uint16_t head) {
  if (!IsRule(head)) return DriverStatus::kRefused;
  Write(kClsHead, kClsRuleNumber.Put(head));
  return DriverStatus::kOk;
}

DriverStatus ClsNext(unsigned index, std::uint16_t next) {
  if (!IsRule(index)) return DriverStatus::kRefused;
  const DriverStatus status = FetchRule(index);
  if (Failed(status)) return status;

  std::uint32_t control = Read(kClsControl);
  control &= ~(kClsNext.Mask<std::uint32_t>() | kClsEndOfChain.Mask<std::uint32_t>());
  // Unlike a rule write, a relink leaves 0 in the link that ends the chain.
  control |=
      next == kClsNoNext ? kClsEndOfChain.Mask<std::uint32_t>() : kClsNext.Put<std::uint32_t>(next);
  IrqGuard lock;
  SelectRule(index & kRelinkMask);
  Write(kClsControl, control);
  return RunEngineUnlocking(kWriteRule, lock);
}

DriverStatus ClsReadCounter(unsigned index, std::uint32_t& value) {
  if (!IsRule(index)) return DriverStatus::kRefused;
  const DriverStatus status = FetchRule(index);
  if (Failed(status)) return status;
  value = Read(kClsCounter);
  return DriverStatus::kOk;
}

DriverStatus ClsWriteCounter(unsigned index, std::uint32_t value) {
  if (!IsRule(index)) return DriverStatus::kRefused;
  IrqGuard lock;
  SelectRule(index);
  Write(kClsCounter, value);
  if (!EngineReady(kClsCommand)) return DriverStatus::kNotReady;
  PulseEngine(kWriteCounter);
  Write(kClsCommand, kIdle);
  lock.Release();
  return AwaitEngine(kWriteCounter);
}

DriverStatus ClsCheckOverflow(ClsOverflowMap& map) {
  const DriverStatus status = RunEngine(kReadRule);
  if (Failed(status)) return status;
  ReadBytes(kClsOverflow, map);
  return DriverStatus::kOk;
}

DriverStatus ClsClearOverflow(const ClsOverflowMap& map) {
  IrqGuard lock;
  WriteBytes(kClsOverflow, map);
  return RunEngineUnlocking(kWriteCounter, lock);
}

DriverStatus ClsReadFilter(std::uint8_t& on) {
  on = ReadFilter(kFilterClassifier);
  return DriverStatus::kOk;
}

DriverStatus ClsWriteFilter(std::uint8_t on) {
  WriteFilter(kFilterClassifier, on != 0);
  return DriverStatus::kOk;
}

}  // namespace monitor
