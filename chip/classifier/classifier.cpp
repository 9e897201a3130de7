#include "chip/classifier/classifier.h"

#include "classifier/classifier_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

/// A counter write clears both done bits, so the end of a write raises both.
constexpr EngineBits ClassifierBits() {
  EngineBits bits = kTableEngineBits;
  bits.write_done |= bits.read_done;
  return bits;
}

/// Calls `visit` with each register of a rule and the member of an entry that holds it.
template <typename Visit>
void ForEachRuleRegister(Visit visit) {
  using Entry = Classifier::Entry;
  visit(kClsEtherType, &Entry::ether_type);
  visit(kClsProtocol, &Entry::protocol);
  visit(kClsDs, &Entry::ds);
  visit(kClsSip, &Entry::sip);
  visit(kClsSipMask, &Entry::sip_mask);
  visit(kClsDip, &Entry::dip);
  visit(kClsDipMask, &Entry::dip_mask);
  visit(kClsSport, &Entry::sport);
  visit(kClsDport, &Entry::dport);
  visit(kClsFlags1, &Entry::flags1);
  visit(kClsFlags2, &Entry::flags2);
  visit(kClsControl, &Entry::control);
  visit(kClsSmac, &Entry::smac);
  visit(kClsDmac, &Entry::dmac);
  visit(kClsVlan, &Entry::vlan);
  visit(kClsSpMask, &Entry::sp_mask);
  visit(kClsDpMask, &Entry::dp_mask);
  visit(kClsFlags3, &Entry::flags3);
  visit(kClsExtendedValid, &Entry::extended_valid);
  visit(kClsDesiredVlan, &Entry::desired_vlan);
}

}  // namespace

Classifier::Classifier(RegisterFile& registers)
    : engine(registers, "cls", kClsCommand, ClassifierBits(),
             [this](std::uint8_t command) { return Run(command); }),
      registers_(registers) {
  engine.on_end = [this] { stored_ = {}; };
  Claim();
}

void Classifier::Claim() {
  ForEachRuleRegister([this](auto reg, auto /*member*/) {
    registers_.Define(reg, {.after_store = [this](std::uint32_t) { stored_.rule = true; }});
  });
  registers_.Define(kClsCounter,
                    {.after_store = [this](std::uint32_t) { stored_.counter = true; }});
  registers_.Define(kClsOverflow,
                    {.after_store = [this](std::uint32_t) { stored_.overflow = true; }});
  registers_.Define(kClsIndex);
  registers_.Define(kClsHead);
}

void Classifier::Reset() {
  entries.fill({});
  overflow.fill(0);
  stored_ = {};
  engine.Reset();
}

void Classifier::SetOverflow(unsigned index) {
  const unsigned byte = (kRules - 1 - index) / 8;
  if (byte < kOverflowBytes) overflow[byte] |= static_cast<std::uint8_t>(1U << (index & 7));
}

bool Classifier::Run(std::uint8_t command) {
  Entry& entry = entries[registers_.Get(kClsIndex) % kRules];
  if (kEngineWrite.Get(command) == 0) {
    LoadWindow(entry);
  } else {
    if (stored_.counter) entry.counter = registers_.Get(kClsCounter);
    if (kClsCounterSelect.Get(command) != 0) {
      ApplyOverflow();
    } else {
      ApplyRule(entry);
    }
  }
  return true;
}

void Classifier::LoadWindow(const Entry& entry) {
  ForEachRuleRegister([&](auto reg, auto member) { registers_.Set(reg, entry.*member); });
  registers_.Set(kClsCounter, entry.counter);
  registers_.Set(kClsOverflow, overflow);
}

void Classifier::ApplyRule(Entry& entry) {
  if (!stored_.rule) return;
  ForEachRuleRegister([&](auto reg, auto member) { entry.*member = registers_.Get(reg); });
}

void Classifier::ApplyOverflow() {
  if (!stored_.overflow) return;
  const auto cleared = registers_.Get(kClsOverflow);
  for (unsigned i = 0; i < kOverflowBytes; ++i) {
    overflow[i] &= static_cast<std::uint8_t>(~cleared[i]);
  }
}

void Classifier::State(StateArchive& archive) {
  archive.Table("rules", entries, [&](Entry& entry) {
    archive.Hex("ether_type", entry.ether_type);
    archive.Hex("protocol", entry.protocol);
    archive.Hex("ds", entry.ds);
    archive.Hex("sip", entry.sip);
    archive.Hex("sip_mask", entry.sip_mask);
    archive.Hex("dip", entry.dip);
    archive.Hex("dip_mask", entry.dip_mask);
    archive.Hex("sport", entry.sport);
    archive.Hex("dport", entry.dport);
    archive.Hex("flags1", entry.flags1);
    archive.Hex("flags2", entry.flags2);
    archive.Hex("control", entry.control);
    archive.Bytes("smac", entry.smac);
    archive.Bytes("dmac", entry.dmac);
    archive.Hex("vlan", entry.vlan);
    archive.Hex("sp_mask", entry.sp_mask);
    archive.Hex("dp_mask", entry.dp_mask);
    archive.Hex("flags3", entry.flags3);
    archive.Hex("extended_valid", entry.extended_valid);
    archive.Hex("desired_vlan", entry.desired_vlan);
    archive.Count("counter", entry.counter);
  });
  archive.Bytes("overflow", overflow);
  archive.Group("stored_since_start", [&] {
    archive.Flag("rule", stored_.rule);
    archive.Flag("counter", stored_.counter);
    archive.Flag("overflow", stored_.overflow);
  });
  engine.State(archive);
}

}  // namespace chip
