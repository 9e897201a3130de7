#include "classifier/rule_language.h"

#include "console/port_words.h"

namespace monitor {
namespace {

/// The words of a line that are still to be read. The slots after the last word hold words of
/// earlier lines and are never read.
class WordCursor {
 public:
  WordCursor(int argc, ArgVector argv, int first) : argc_(argc), argv_(argv), at_(first) {}

  [[nodiscard]] bool AtEnd() const { return at_ >= argc_; }
  [[nodiscard]] int Position() const { return at_; }

  /// The next word; null at the end.
  const char* Take() { return AtEnd() ? nullptr : argv_[at_++]; }

  /// Takes the next word if it is `word`.
  bool TakeIf(const char* word) {
    if (AtEnd() || !WordIs(argv_[at_], word)) return false;
    ++at_;
    return true;
  }

 private:
  int argc_;
  ArgVector argv_;
  int at_;
};

/// Carries out part of a keyword's meaning: takes the words that it needs and stores their value
/// in the rule. False when they are missing or do not parse.
using Action = bool (*)(WordCursor& words, ClsRule& rule);

template <auto member, std::uint8_t value>
bool Set(WordCursor& /*words*/, ClsRule& rule) {
  rule.*member = value;
  return true;
}

template <auto parse, auto member>
bool Argument(WordCursor& words, ClsRule& rule) {
  const char* const word = words.Take();
  return word != nullptr && parse(word, rule.*member);
}

constexpr std::array<Keyword, 2> kDropWords{{{"HIGH", 1}, {"LOW", 0}}};

bool ParseDrop(const char* word, std::uint8_t& high) {
  return ParseKeyword(word, kDropWords, high);
}

/// Up to four passes over the port words, each of which takes those that come in its order: more
/// than four words in all when some repeat. A word left over is the next keyword, so that a CPU
/// may be either.
bool Interfaces(WordCursor& words, ClsRule& rule) {
  constexpr int kPasses = 4;
  unsigned ports = 0;
  for (int pass = 0; pass < kPasses; ++pass) {
    for (const Keyword& port : kPortWords) {
      if (words.TakeIf(port.word)) ports |= port.value;
    }
  }
  rule.interfaces = static_cast<std::uint8_t>(ports);
  return true;
}

struct RuleKeyword {
  const char* word;
  ClsPresence presence;  ///< Marked when the keyword is seen.
  std::array<Action, 3> actions = {};
};

// The number of hexadecimal digits of an argument is in its parser.
// clang-format off
constexpr RuleKeyword kKeywords[] = {
    {"EG",     {},                  {Set<&ClsRule::ingress, 0>}},
    {"CPU",    {},                  {Set<&ClsRule::toCpu, 1>}},
    {"CC",     {},                  {Set<&ClsRule::copyToCpu, 1>}},
    {"FILTER", {},                  {Set<&ClsRule::filter, 1>}},
    {"!",      {},                  {Set<&ClsRule::positive, 0>}},
    {"ETH",    kMatchEtherType,     {Argument<ParseHex16, &ClsRule::etherType>}},
    {"SIP",    kMatchSip,           {Argument<ParseIp, &ClsRule::sip>, Argument<ParseHex8, &ClsRule::sipMask>}},
    {"DIP",    kMatchDip,           {Argument<ParseIp, &ClsRule::dip>, Argument<ParseHex8, &ClsRule::dipMask>}},
    {"SP",     kMatchSport,         {Argument<ParseHex16, &ClsRule::sport>, Argument<ParseHex8, &ClsRule::spMask>}},
    {"DP",     kMatchDport,         {Argument<ParseHex16, &ClsRule::dport>, Argument<ParseHex8, &ClsRule::dpMask>}},
    {"PRO",    kMatchProtocol,      {Argument<ParseHex8, &ClsRule::protocol>}},
    {"DS",     kMatchDs,            {Argument<ParseHex8, &ClsRule::ds>}},
    {"TAG",    kMatchTag,           {Argument<ParseHex8, &ClsRule::tag>}},
    {"DDS",    kMatchDds,           {Argument<ParseHex8, &ClsRule::dds>}},
    {"DTAG",   kMatchDtag,          {Argument<ParseHexDigit, &ClsRule::dtag>}},
    {"INT",    kMatchInterfaces,    {Interfaces}},
    {"CLASS",  kMatchClass,         {Argument<ParseHex8, &ClsRule::dclass>}},
    {"SYN",    kMatchSyn,           {Argument<ParseHex8, &ClsRule::syn>}},
    {"FIN",    kMatchFin,           {Argument<ParseHex8, &ClsRule::fin>}},
    {"ACK",    &ClsRule::ackValid,  {Argument<ParseHex8, &ClsRule::ack>}},
    {"DROP",   kMatchDrop,          {Argument<ParseDrop, &ClsRule::dropHigh>}},
    {"SMAC",   &ClsRule::smacValid, {Argument<ParseMac, &ClsRule::smac>}},
    {"DMAC",   &ClsRule::dmacValid, {Argument<ParseMac, &ClsRule::dmac>}},
    {"IVLAN",  &ClsRule::vlanValid, {Argument<ParseHex16, &ClsRule::vlanId>}},
    {"DVLAN",  {},                  {Argument<ParseHex16, &ClsRule::desiredVlanId>,
                                     Argument<ParseHexDigit, &ClsRule::desiredVlanForce>,
                                     Argument<ParseHexDigit, &ClsRule::desiredVlanTag>}},
    {"ITAG",   &ClsRule::itagValid, {Argument<ParseHexDigit, &ClsRule::ingressTagged>}},
    {"RST",    &ClsRule::rstValid,  {Argument<ParseHexDigit, &ClsRule::rst>}},
};
// clang-format on

bool Apply(const RuleKeyword& keyword, WordCursor& words, ClsRule& rule) {
  keyword.presence.Mark(rule);
  for (const Action action : keyword.actions) {
    if (action != nullptr && !action(words, rule)) return false;
  }
  return true;
}

}  // namespace

bool ParseRuleKeywords(int argc, ArgVector argv, int first, ClsRule& rule) {
  WordCursor words(argc, argv, first);
  while (!words.AtEnd()) {
    const int start = words.Position();
    for (const RuleKeyword& keyword : kKeywords) {
      if (words.TakeIf(keyword.word) && !Apply(keyword, words, rule)) return false;
    }
    if (words.Position() == start) return false;
  }
  return true;
}

}  // namespace monitor
