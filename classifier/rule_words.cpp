#include "classifier/rule_words.h"

#include "classifier/classifier_registers.h"

namespace monitor {
namespace {

/// Some bits of one word.
struct Place {
  std::uint32_t RuleWords::*word;
  Field field;
};

/// How a value is put into its place.
enum class Fit : std::uint8_t {
  kCut,   ///< Excess bits are lost.
  kFlag,  ///< Any value except 0 is 1.
  kRun,   ///< Excess bits overflow into the neighbouring ones.
};

/// A value of the rule and its place.
struct Value {
  std::uint8_t ClsRule::*member = nullptr;  ///< None: the field has its own register.
  Place place{};
  Fit fit = Fit::kCut;
};

/// An optional field: how rule and chip mark it as present, and its value.
struct OptionalField {
  ClsPresence presence;
  Place valid;
  Value value = {};
};

constexpr auto kControl = &RuleWords::control;
constexpr auto kFlags1 = &RuleWords::flags1;
constexpr auto kFlags2 = &RuleWords::flags2;
constexpr auto kFlags3 = &RuleWords::flags3;
constexpr auto kExtended = &RuleWords::extendedValid;
constexpr auto kVlan = &RuleWords::desiredVlan;

// clang-format off
constexpr OptionalField kMatchFields[] = {
    {kMatchEtherType,  {kControl, kClsEtherTypeValid}},
    {kMatchSip,        {kControl, kClsSipValid}},
    {kMatchDip,        {kControl, kClsDipValid}},
    {kMatchSport,      {kControl, kClsSportValid}},
    {kMatchDport,      {kControl, kClsDportValid}},
    {kMatchProtocol,   {kControl, kClsProtocolValid}},
    {kMatchDs,         {kControl, kClsDsValid}},
    {kMatchTag,        {kControl, kClsTagValid},        {&ClsRule::tag,        {kFlags1,  kClsTag},        Fit::kCut}},
    {kMatchInterfaces, {kControl, kClsInterfacesValid}, {&ClsRule::interfaces, {kFlags2,  kClsInterfaces}, Fit::kCut}},
    {kMatchDds,        {kFlags3,  kClsDdsValid},        {&ClsRule::dds,        {kControl, kClsDds},        Fit::kCut}},
    {kMatchDtag,       {kControl, kClsDtagValid},       {&ClsRule::dtag,       {kControl, kClsDtag},       Fit::kCut}},
    {kMatchSyn,        {kFlags1,  kClsSynValid},        {&ClsRule::syn,        {kFlags1,  kClsSyn},        Fit::kFlag}},
    {kMatchFin,        {kFlags1,  kClsFinValid},        {&ClsRule::fin,        {kFlags1,  kClsFin},        Fit::kFlag}},
    {kMatchClass,      {kFlags1,  kClsClassValid},      {&ClsRule::dclass,     {kFlags3,  kClsClass},      Fit::kCut}},
    {kMatchDrop,       {kFlags2,  kClsDropValid},       {&ClsRule::dropHigh,   {kFlags2,  kClsDropHigh},   Fit::kFlag}},
};

constexpr OptionalField kExtendedFields[] = {
    {&ClsRule::smacValid, {kExtended, kClsSmacValid}},
    {&ClsRule::dmacValid, {kExtended, kClsDmacValid}},
    {&ClsRule::vlanValid, {kExtended, kClsVlanValid}},
    {&ClsRule::ackValid,  {kExtended, kClsAckValid},  {&ClsRule::ack,           {kFlags3, kClsAck},           Fit::kRun}},
    {&ClsRule::itagValid, {kExtended, kClsItagValid}, {&ClsRule::ingressTagged, {kFlags3, kClsIngressTagged}, Fit::kRun}},
    {&ClsRule::rstValid,  {kExtended, kClsRstValid},  {&ClsRule::rst,           {kFlags3, kClsRst},           Fit::kCut}},
};

constexpr Value kCommonValues[] = {
    {&ClsRule::filter,           {kControl, kClsFilter},         Fit::kFlag},
    {&ClsRule::toCpu,            {kControl, kClsToCpu},          Fit::kFlag},
    {&ClsRule::ingress,          {kFlags2, kClsIngress},         Fit::kFlag},
    {&ClsRule::positive,         {kFlags2, kClsPositive},        Fit::kFlag},
    {&ClsRule::desiredVlanForce, {kVlan, kClsDesiredVlanForce},  Fit::kCut},
    {&ClsRule::desiredVlanTag,   {kVlan, kClsDesiredVlanTag},    Fit::kCut},
};

constexpr Value kWriteOnly{&ClsRule::copyToCpu, {kControl, kClsCopyToCpu}, Fit::kFlag};
// clang-format on

void Encode(const Value& value, const ClsRule& rule, RuleWords& words) {
  const std::uint32_t number = rule.*value.member;
  const Field& field = value.place.field;
  std::uint32_t& word = words.*value.place.word;
  switch (value.fit) {
    case Fit::kCut:
      word |= field.Put<std::uint32_t>(number);
      break;
    case Fit::kFlag:
      if (number != 0) word |= field.Mask<std::uint32_t>();
      break;
    case Fit::kRun:
      word |= number << field.low;
      break;
  }
}

void Decode(const Value& value, const RuleWords& words, ClsRule& rule) {
  const std::uint32_t word = words.*value.place.word;
  rule.*value.member = static_cast<std::uint8_t>(value.place.field.Get(word));
}

void Encode(const OptionalField& field, const ClsRule& rule, RuleWords& words) {
  if (!field.presence.In(rule)) return;
  words.*field.valid.word |= field.valid.field.Mask<std::uint32_t>();
  if (field.value.member != nullptr) Encode(field.value, rule, words);
}

void Decode(const OptionalField& field, const RuleWords& words, ClsRule& rule) {
  if (field.valid.field.Get(words.*field.valid.word) == 0) return;
  field.presence.Mark(rule);
  if (field.value.member != nullptr) Decode(field.value, words, rule);
}

}  // namespace

RuleWords EncodeRule(const ClsRule& rule) {
  RuleWords words;
  for (const OptionalField& field : kMatchFields) Encode(field, rule, words);
  for (const OptionalField& field : kExtendedFields) Encode(field, rule, words);
  for (const Value& value : kCommonValues) Encode(value, rule, words);
  Encode(kWriteOnly, rule, words);
  words.control |= kClsNext.Put<std::uint32_t>(rule.next) | kClsRuleValid.Mask<std::uint32_t>();
  if (rule.next == kClsNoNext) words.control |= kClsEndOfChain.Mask<std::uint32_t>();
  words.desiredVlan |= kClsDesiredVlanId.Put<std::uint32_t>(rule.desiredVlanId);
  return words;
}

void DecodeMatch(const RuleWords& words, ClsRule& rule) {
  for (const OptionalField& field : kMatchFields) Decode(field, words, rule);
}

void DecodeExtended(const RuleWords& words, ClsRule& rule) {
  for (const OptionalField& field : kExtendedFields) Decode(field, words, rule);
}

void DecodeCommon(const RuleWords& words, ClsRule& rule) {
  for (const Value& value : kCommonValues) Decode(value, words, rule);
  const bool ends = kClsEndOfChain.Get(words.control) != 0;
  rule.next = ends ? kClsNoNext : static_cast<std::uint16_t>(kClsNext.Get(words.control));
  rule.valid = static_cast<std::uint8_t>(kClsRuleValid.Get(words.control));
  rule.desiredVlanId = static_cast<std::uint16_t>(kClsDesiredVlanId.Get(words.desiredVlan));
}

}  // namespace monitor
