// The words into which a rule's links, actions, valid bits and small values are packed.
#pragma once

#include "classifier/classifier.h"

namespace monitor {

/// Register values. All are held in 32 bits, so that one kind of table row serves them all.
struct RuleWords {
  std::uint32_t control = 0;
  std::uint32_t flags1 = 0;
  std::uint32_t flags2 = 0;
  std::uint32_t flags3 = 0;
  std::uint32_t extendedValid = 0;
  std::uint32_t desiredVlan = 0;
};

/// All words of a rule that is to be written.
[[nodiscard]] RuleWords EncodeRule(const ClsRule& rule);

// Decoding follows the order in which the words are loaded. A field that is absent keeps its
// value, as does `copyToCpu`.

/// `fieldMask` and the values that it covers, from the control word and the flag bytes.
void DecodeMatch(const RuleWords& words, ClsRule& rule);

/// The presence bytes and the values that they cover, from the extended valid bits and flags3.
void DecodeExtended(const RuleWords& words, ClsRule& rule);

/// What every rule has: actions, sense, link, valid, desired VLAN.
void DecodeCommon(const RuleWords& words, ClsRule& rule);

}  // namespace monitor
