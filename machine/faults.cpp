#include "machine/faults.h"

#include <charconv>
#include <memory>
#include <sstream>
#include <vector>

#include "host/usage_error.h"

namespace board {
namespace {

using chip::Fault;

struct Kind {
  const char* name;
  Fault::Kind kind;
  const char* meaning;
};

constexpr Kind kKinds[] = {
    {"hang", Fault::Kind::kHang, "hang:ENGINE        operations never complete"},
    {"busy", Fault::Kind::kBusy, "busy:ENGINE        the engine is never ready"},
    {"fail", Fault::Kind::kFail, "fail:ENGINE        operations complete without effect"},
    {"slow", Fault::Kind::kSlow,
     "slow:ENGINE:LOADS  an operation takes so many loads of the command byte"},
};

std::vector<std::string> KindNames() {
  std::vector<std::string> names;
  for (const Kind& kind : kKinds) names.emplace_back(kind.name);
  return names;
}

std::string Listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
  return list;
}

/// One "KIND:ENGINE[:LOADS]" and its parts.
class Spec {
 public:
  explicit Spec(const std::string& text) : text_(text) {
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, ':');) parts_.push_back(part);
    if (text.empty() || text.back() == ':') parts_.emplace_back();
  }

  [[nodiscard]] Fault::Kind TakeKind() const {
    for (const Kind& kind : kKinds) {
      if (parts_[0] == kind.name) return kind.kind;
    }
    Refuse("no fault '" + parts_[0] + "'; known are " + Listed(KindNames()));
  }

  void Apply(chip::RouterChip& chip, const Fault& fault) const {
    const std::string known = "known are " + Listed(chip.FaultNames());
    if (parts_.size() < 2) Refuse("the engine is missing; " + known);
    if (!chip.SetFault(parts_[1], fault)) Refuse("no engine '" + parts_[1] + "'; " + known);
  }

  [[nodiscard]] unsigned TakeLoads() const {
    if (parts_.size() < 3) Refuse("the number of loads is missing, as in slow:l3:50");
    const std::string& part = parts_[2];
    unsigned loads = 0;
    const auto result = std::from_chars(part.data(), part.data() + part.size(), loads);
    if (result.ec != std::errc() || result.ptr != part.data() + part.size() || loads == 0) {
      Refuse("'" + part + "' is not a number of loads; give a decimal number from 1 to 4294967295");
    }
    return loads;
  }

  void ExpectParts(std::size_t count) const {
    if (parts_.size() > count) Refuse("'" + parts_[count] + "' is too much");
  }

 private:
  [[noreturn]] void Refuse(const std::string& why) const {
    throw UsageError("--fault " + text_ + ": " + why);
  }

  std::string text_;
  std::vector<std::string> parts_;
};

}  // namespace

void SetFault(chip::RouterChip& chip, const std::string& spec) {
  const Spec parts(spec);
  Fault fault{.kind = parts.TakeKind()};
  const bool slow = fault.kind == Fault::Kind::kSlow;
  if (slow) fault.loads = parts.TakeLoads();
  parts.ExpectParts(slow ? 3 : 2);
  parts.Apply(chip, fault);
}

std::string DescribeFaults() {
  std::string text = "Faults:\n";
  for (const Kind& kind : kKinds) text += std::string("  ") + kind.meaning + "\n";
  // Too large for a small stack.
  const auto chip = std::make_unique<chip::RouterChip>();
  return text + "  Engines: " + Listed(chip->FaultNames()) + "\n";
}

}  // namespace board
