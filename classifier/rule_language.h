// The keywords with which `clsfr` describes a rule.
#pragma once

#include "classifier/classifier.h"

namespace monitor {

/// Reads the keywords from word `first` to the end of the line into `rule`. They may come in any
/// order and repeat: the last occurrence counts. False for an unknown word and for an argument
/// that is missing or does not parse; `rule` is then partly filled.
[[nodiscard]] bool ParseRuleKeywords(int argc, ArgVector argv, int first, ClsRule& rule);

}  // namespace monitor
