// Chains of rules that are listed for longer than a session should be.
#include <gtest/gtest.h>

#include "chip/router_chip.h"
#include "classifier/classifier.h"
#include "support/command_line.h"
#include "support/scripted_console.h"

namespace {

/// A rule without optional fields as it is listed.
std::string Listed(const std::string& index, const std::string& next) {
  return "INDEX: " + index +
         "\tVALID\n\r"
         "INGRESS\tPOSITIVE\n\r"
         " DESIRED VLAN ID:  0  TAG:  0  FORCE:  0\n\r"
         " NEXT: " +
         next + "\n\r\n\r";
}

std::string TwoColumns(unsigned value) {
  static const char kDigits[] = "0123456789abcdef";
  return {value < 16 ? ' ' : kDigits[value >> 4], kDigits[value & 15]};
}

class ClassifierChain : public testing::Test {
 protected:
  void SetUp() override {
    chip_.Reset();
    chip::Attach(chip_);
    PressCtrlCInWaits(true);  // an engine that hangs is a failure, not a wait
  }

  /// Puts a rule into the table: valid, ingress, positive.
  static void Link(unsigned index, unsigned next) {
    chip::Rule& rule = chip_.classifier.Change(index);
    rule.next = static_cast<std::uint8_t>(next);
    rule.end = next == 255;
    rule.valid = true;
    rule.ingress = true;
    rule.positive = true;
  }

  static void SetHead(std::uint8_t index) { chip_.registers.Store(0x722, 1, index); }

  static void ExpectListing(const char* line, const std::string& wanted) {
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, monitor::kDone);
    EXPECT_EQ(outcome.output, wanted);
  }

  static chip::RouterChip chip_;
};

chip::RouterChip ClassifierChain::chip_;

TEST_F(ClassifierChain, ACycleEndsAfterTheHeadAnd129Rules) {
  Link(3, 4);
  Link(4, 3);
  SetHead(3);
  std::string wanted;
  for (int i = 0; i < 65; ++i) wanted += Listed(" 3", " 4") + Listed(" 4", " 3");
  ExpectListing("clsfr l", wanted);
}

TEST_F(ClassifierChain, ARuleThatLinksToItselfIsListed130Times) {
  Link(0x7F, 0x7F);
  SetHead(0x7F);
  std::string wanted;
  for (int i = 0; i < 130; ++i) wanted += Listed("7f", "7f");
  ExpectListing("clsfr l", wanted);
}

TEST_F(ClassifierChain, AChainOfAllRulesIsListedWhole) {
  std::string wanted;
  for (unsigned i = 0; i < 128; ++i) {
    const unsigned next = i == 127 ? 255 : i + 1;
    Link(i, next);
    wanted += Listed(TwoColumns(i), TwoColumns(next));
  }
  ExpectListing("clsfr l", wanted);
}

TEST_F(ClassifierChain, ACountOf0ListsTheHeadAnd255Rules) {
  Link(0x10, 0x11);
  Link(0x11, 0x10);
  SetHead(0x10);
  std::string wanted;
  for (int i = 0; i < 128; ++i) wanted += Listed("10", "11") + Listed("11", "10");
  ExpectListing("clsfr l 0", wanted);
}

TEST_F(ClassifierChain, ACountOfFfListsTheHeadAnd254Rules) {
  Link(0x10, 0x10);
  SetHead(0x10);
  std::string wanted;
  for (int i = 0; i < 255; ++i) wanted += Listed("10", "10");
  ExpectListing("clsfr l ff", wanted);
}

}  // namespace
