// Random rules typed as command lines: the model's entry, the record read back and the printed
// text agree with an encoding of the test's own.
#include <gtest/gtest.h>

#include <random>

#include "chip/router_chip.h"
#include "classifier/classifier.h"
#include "support/command_line.h"
#include "support/scripted_console.h"
#include "whole/classifier/rule_image.h"

namespace {

constexpr unsigned kRounds = 12'000;
constexpr std::size_t kLongestLine = 253;

/// What an argument is, other than a number of that many hexadecimal digits.
enum Kind : int { kIp = -1, kLevel = -2, kPorts = -3 };

struct KeywordForm {
  const char* word;
  std::vector<int> arguments;
};

const std::vector<KeywordForm> kForms{
    {"EG", {}},         {"CPU", {}},       {"CC", {}},        {"FILTER", {}}, {"!", {}},
    {"ETH", {4}},       {"SIP", {kIp, 2}}, {"DIP", {kIp, 2}}, {"SP", {4, 2}}, {"DP", {4, 2}},
    {"PRO", {2}},       {"DS", {2}},       {"TAG", {2}},      {"DDS", {2}},   {"DTAG", {1}},
    {"INT", {kPorts}},  {"CLASS", {2}},    {"SYN", {2}},      {"FIN", {2}},   {"ACK", {2}},
    {"DROP", {kLevel}}, {"SMAC", {12}},    {"DMAC", {12}},    {"IVLAN", {4}}, {"DVLAN", {4, 1, 1}},
    {"ITAG", {1}},      {"RST", {1}},
};

/// Two digits are never taken for a form's letter.
std::string TwoDigits(unsigned value) {
  static const char kDigits[] = "0123456789abcdef";
  return {kDigits[value >> 4], kDigits[value & 15]};
}

class RuleTyper {
 public:
  unsigned Below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }

  /// A number of at most `digits` digits with its text: any case, perhaps with leading zeros,
  /// perhaps with a 0x.
  std::uint64_t Number(unsigned digits, std::string& text) {
    const unsigned used = 1 + Below(digits);
    std::uint64_t value = 0;
    if (Below(4) == 0) text += "0x";
    for (unsigned i = 0; i < used; ++i) {
      const unsigned digit = Below(16);
      value = value << 4 | digit;
      text += (Below(2) == 0 ? "0123456789abcdef" : "0123456789ABCDEF")[digit];
    }
    return value;
  }

  /// An argument with its text, which begins with a space if there is any.
  std::uint64_t Argument(int kind, std::string& text) {
    if (kind == kPorts) return Ports(text);
    text += ' ';
    if (kind == kIp) return Ip(text);
    if (kind == kLevel) {
      const bool high = Below(2) != 0;
      text += high ? AnyCase("HIGH") : AnyCase("LOW");
      return high ? 1 : 0;
    }
    return Number(static_cast<unsigned>(kind), text);
  }

  std::string AnyCase(const std::string& word) {
    std::string text = word;
    for (char& c : text) {
      if (c >= 'A' && c <= 'Z' && Below(2) == 0) c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
  }

 private:
  std::uint64_t Ip(std::string& text) {
    std::uint64_t address = 0;
    for (unsigned part = 0; part < 4; ++part) {
      const unsigned value = Below(256);
      address = address << 8 | value;
      text += std::to_string(value) + (part < 3 ? "." : "");
    }
    return address;
  }

  /// At most three words, so that one pass over the group is left.
  std::uint64_t Ports(std::string& text) {
    static const char* const kWords[] = {"WAN", "LAN", "DMZ", "CPU"};
    std::uint64_t ports = 0;
    for (unsigned left = Below(4); left != 0; --left) {
      const unsigned port = Below(4);
      ports |= std::uint64_t{1} << port;
      text += ' ';
      text += AnyCase(kWords[port]);
    }
    return ports;
  }

  std::mt19937 random_{20020717};
};

/// Appends random keywords to the line, some of them repeatedly; what was said.
SaidKeywords TypeKeywords(RuleTyper& typer, std::string& line) {
  SaidKeywords said;
  std::string last;
  for (unsigned left = typer.Below(25); left != 0; --left) {
    const KeywordForm& form = kForms[typer.Below(static_cast<unsigned>(kForms.size()))];
    const std::string word = form.word;
    std::string text = " ";
    text += typer.AnyCase(word);
    std::vector<std::uint64_t> arguments;
    for (const int kind : form.arguments) arguments.push_back(typer.Argument(kind, text));
    if (line.size() + text.size() > kLongestLine) continue;
    if (word == "CPU" && last == "CPU") continue;  // how many a group takes depends on its order
    // After a group of interfaces the word belongs to the group, which takes one more for sure.
    const bool joins = word == "CPU" && last == "INT";
    line += text;
    last = word;
    if (joins) {
      said["INT"][0] |= 8;
    } else {
      said[word] = arguments;
    }
  }
  return said;
}

void ExpectValues(const chip::Rule& rule, const RuleImage& image) {
  const auto mac = [](const std::array<std::uint8_t, 6>& bytes) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes) value = value << 8 | byte;
    return value;
  };
  EXPECT_EQ(rule.ether_type, image.Get(0x700, 2));
  EXPECT_EQ(rule.protocol, image.Get(0x702, 1));
  EXPECT_EQ(rule.ds, image.Get(0x703, 1));
  EXPECT_EQ(rule.sip, image.Get(0x704, 4));
  EXPECT_EQ(rule.sip_mask, image.Get(0x708, 1));
  EXPECT_EQ(rule.dip, image.Get(0x70C, 4));
  EXPECT_EQ(rule.dip_mask, image.Get(0x710, 1));
  EXPECT_EQ(rule.sport, image.Get(0x714, 2));
  EXPECT_EQ(rule.dport, image.Get(0x716, 2));
  EXPECT_EQ(rule.counter, image.Get(0x724, 4));
  EXPECT_EQ(rule.vlan, image.Get(0x750, 2));
  EXPECT_EQ(rule.sp_mask, image.Get(0x752, 1));
  EXPECT_EQ(rule.dp_mask, image.Get(0x753, 1));
  EXPECT_EQ(mac(rule.smac), image.Get(0x740, 6));
  EXPECT_EQ(mac(rule.dmac), image.Get(0x748, 6));
}

void ExpectFlags1(const chip::Rule& rule, const RuleImage& image) {
  const std::uint64_t flags1 = image.Get(0x718, 1);
  EXPECT_EQ(rule.class_valid, flags1 >> 7 & 1);
  EXPECT_EQ(rule.syn_valid, flags1 >> 6 & 1);
  EXPECT_EQ(rule.syn, flags1 >> 5 & 1);
  EXPECT_EQ(rule.fin_valid, flags1 >> 4 & 1);
  EXPECT_EQ(rule.fin, flags1 >> 3 & 1);
  EXPECT_EQ(rule.tag, flags1 & 7);
}

void ExpectFlags2(const chip::Rule& rule, const RuleImage& image) {
  const std::uint64_t flags2 = image.Get(0x719, 1);
  EXPECT_EQ(rule.drop_valid, flags2 >> 7 & 1);
  EXPECT_EQ(rule.drop_high, flags2 >> 6 & 1);
  EXPECT_EQ(rule.positive, flags2 >> 5 & 1);
  EXPECT_EQ(rule.ingress, flags2 >> 4 & 1);
  EXPECT_EQ(rule.interfaces, flags2 & 0xF);
}

void ExpectControl(const chip::Rule& rule, const RuleImage& image) {
  const std::uint64_t control = image.Get(0x71C, 4);
  EXPECT_EQ(rule.next, control >> 24 & 0xFF);
  EXPECT_EQ(rule.dtag, control >> 21 & 7);
  EXPECT_EQ(rule.dtag_valid, control >> 20 & 1);
  EXPECT_EQ(rule.to_cpu, control >> 19 & 1);
  EXPECT_EQ(rule.filter, control >> 18 & 1);
  EXPECT_EQ(rule.copy_to_cpu, control >> 17 & 1);
  EXPECT_EQ(rule.interfaces_valid, control >> 16 & 1);
  EXPECT_EQ(rule.dds, control >> 10 & 0x3F);
  EXPECT_EQ(rule.end, control >> 9 & 1);
  EXPECT_EQ(rule.tag_valid, control >> 8 & 1);
  EXPECT_EQ(rule.ds_valid, control >> 7 & 1);
  EXPECT_EQ(rule.protocol_valid, control >> 6 & 1);
  EXPECT_EQ(rule.dport_valid, control >> 5 & 1);
  EXPECT_EQ(rule.sport_valid, control >> 4 & 1);
  EXPECT_EQ(rule.dip_valid, control >> 3 & 1);
  EXPECT_EQ(rule.sip_valid, control >> 2 & 1);
  EXPECT_EQ(rule.ether_type_valid, control >> 1 & 1);
  EXPECT_EQ(rule.valid, control & 1);
}

void ExpectFlags3(const chip::Rule& rule, const RuleImage& image) {
  const std::uint64_t flags3 = image.Get(0x754, 1);
  EXPECT_EQ(rule.flags3_rest, flags3 >> 6 & 3);
  EXPECT_EQ(rule.rst, flags3 >> 5 & 1);
  EXPECT_EQ(rule.traffic_class, flags3 >> 3 & 3);
  EXPECT_EQ(rule.dds_valid, flags3 >> 2 & 1);
  EXPECT_EQ(rule.ingress_tagged, flags3 >> 1 & 1);
  EXPECT_EQ(rule.ack, flags3 & 1);
}

void ExpectExtended(const chip::Rule& rule, const RuleImage& image) {
  const std::uint64_t extended = image.Get(0x755, 1);
  EXPECT_EQ(rule.extended_valid_rest, extended >> 6 & 3);
  EXPECT_EQ(rule.rst_valid, extended >> 5 & 1);
  EXPECT_EQ(rule.itag_valid, extended >> 4 & 1);
  EXPECT_EQ(rule.ack_valid, extended >> 3 & 1);
  EXPECT_EQ(rule.vlan_valid, extended >> 2 & 1);
  EXPECT_EQ(rule.dmac_valid, extended >> 1 & 1);
  EXPECT_EQ(rule.smac_valid, extended & 1);
}

void ExpectDesiredVlan(const chip::Rule& rule, const RuleImage& image) {
  const std::uint64_t vlan = image.Get(0x756, 2);
  EXPECT_EQ(rule.desired_vlan_rest, vlan >> 14 & 3);
  EXPECT_EQ(rule.desired_vlan_tag, vlan >> 13 & 1);
  EXPECT_EQ(rule.desired_vlan_force, vlan >> 12 & 1);
  EXPECT_EQ(rule.desired_vlan, vlan & 0xFFF);
}

void ExpectEntry(const chip::Rule& rule, const RuleImage& image) {
  ExpectValues(rule, image);
  ExpectFlags1(rule, image);
  ExpectFlags2(rule, image);
  ExpectControl(rule, image);
  ExpectFlags3(rule, image);
  ExpectExtended(rule, image);
  ExpectDesiredVlan(rule, image);
}

/// The record's own notes of what is present, and what the printed text does not show.
void ExpectRecord(const monitor::ClsRule& rule, const RuleImage& image) {
  const std::uint64_t control = image.Get(0x71C, 4);
  const std::uint64_t flags1 = image.Get(0x718, 1);
  const std::uint64_t flags2 = image.Get(0x719, 1);
  const std::uint64_t flags3 = image.Get(0x754, 1);
  const std::uint64_t extended = image.Get(0x755, 1);
  const std::uint64_t mask = (control >> 1 & 0xFF) | (control >> 16 & 1) << 9 |
                             (flags1 >> 6 & 1) << 10 | (flags1 >> 4 & 1) << 11 |
                             (flags1 >> 7 & 1) << 12 | (flags2 >> 7 & 1) << 13 |
                             (flags3 >> 2 & 1) << 14 | (control >> 20 & 1) << 15;
  EXPECT_EQ(rule.fieldMask, mask);
  EXPECT_EQ(rule.smacValid, extended & 1);
  EXPECT_EQ(rule.dmacValid, extended >> 1 & 1);
  EXPECT_EQ(rule.vlanValid, extended >> 2 & 1);
  EXPECT_EQ(rule.ackValid, extended >> 3 & 1);
  EXPECT_EQ(rule.itagValid, extended >> 4 & 1);
  EXPECT_EQ(rule.rstValid, extended >> 5 & 1);
  EXPECT_EQ(rule.counter, image.Get(0x724, 4));
  EXPECT_EQ(rule.etherType, (control & 2) != 0 ? image.Get(0x700, 2) : 0);
  EXPECT_EQ(rule.sip, (control & 4) != 0 ? image.Get(0x704, 4) : 0);
  EXPECT_EQ(rule.sipMask, (control & 4) != 0 ? image.Get(0x708, 1) : 0);
  EXPECT_EQ(rule.dip, (control & 8) != 0 ? image.Get(0x70C, 4) : 0);
  EXPECT_EQ(rule.dipMask, (control & 8) != 0 ? image.Get(0x710, 1) : 0);
  EXPECT_EQ(rule.sport, (control & 0x10) != 0 ? image.Get(0x714, 2) : 0);
  EXPECT_EQ(rule.dport, (control & 0x20) != 0 ? image.Get(0x716, 2) : 0);
  EXPECT_EQ(rule.spMask, image.Get(0x752, 1));
  EXPECT_EQ(rule.dpMask, image.Get(0x753, 1));
  EXPECT_EQ(rule.ingressTagged, (extended & 0x10) != 0 ? flags3 >> 1 & 1 : 0);
  EXPECT_EQ(rule.copyToCpu, 0);
}

TEST(ClassifierRules, TypedRulesReachTheChipAndReadBack) {
  static chip::RouterChip chip;
  chip::Attach(chip);
  PressCtrlCInWaits(true);  // an engine that hangs is a failure, not a wait
  RuleTyper typer;
  std::array<RuleImage, chip::Classifier::kSlots> rules;
  RuleImage window;
  for (unsigned round = 0; round < kRounds && !HasFailure(); ++round) {
    const unsigned index = typer.Below(128);
    std::string line = "clsfr " + TwoDigits(index) + " = ";
    const bool last = typer.Below(4) == 0;
    if (last) line += "fF";
    const auto next = last ? 255U : static_cast<unsigned>(typer.Number(2, line));
    line += ' ';
    const auto counter = static_cast<std::uint32_t>(typer.Number(8, line));
    const SaidKeywords said = TypeKeywords(typer, line);
    SCOPED_TRACE(line);

    window.Write(next, counter, said);
    rules[index] = window;
    const Outcome written = RunLine(line);
    EXPECT_EQ(written.result, monitor::kDone);
    EXPECT_EQ(written.output, window.Text(index, said.contains("CC")));
    ExpectEntry(chip.classifier.Entries()[index], window);

    // Some rule of earlier rounds, whose registers the next write finds in the window.
    const unsigned other = typer.Below(128);
    window = rules[other];
    const Outcome listed = RunLine("clsfr " + TwoDigits(other));
    EXPECT_EQ(listed.result, monitor::kDone);
    EXPECT_EQ(listed.output, window.Text(other, false));
    monitor::ClsRule rule{};
    EXPECT_EQ(monitor::ClsRead(other, rule), monitor::DriverStatus::kOk);
    ExpectRecord(rule, window);
  }
  EXPECT_TRUE(chip.registers.Complaints().empty());
}

}  // namespace
