#include "machine/complaints.h"

#include <string>
#include <utility>

#include "chip/hex.h"
#include "host/message.h"

namespace board {
namespace {

/// A dump of the whole window takes a handful of lines.
constexpr unsigned kRangesPerLine = 8;

constexpr unsigned kDigits = 4;

void ReportComplaint(const std::string& text) { Report("the chip complains: " + text); }

std::string RangeText(std::size_t first, std::size_t last) {
  const std::string text = chip::Hex(first, kDigits);
  return first == last ? text : text + "-" + chip::Hex(last, kDigits);
}

/// Ranges of offsets without a register, several to a line.
class UnmappedReport {
 public:
  ~UnmappedReport() { EndLine(); }

  void Add(std::size_t first, std::size_t last) {
    line_.append(count_ == 0 ? "no register at " : ", ").append(RangeText(first, last));
    if (++count_ == kRangesPerLine) EndLine();
  }

 private:
  void EndLine() {
    if (std::exchange(count_, 0) != 0) ReportComplaint(std::exchange(line_, ""));
  }

  std::string line_;
  unsigned count_ = 0;
};

}  // namespace

Complaints::Complaints(chip::RegisterFile& registers) {
  registers.on_complaint = [this](const std::string& text) { ReportAtOnce(text); };
  registers.on_unmapped = [this](std::uint32_t offset) { NoteUnmapped(offset); };
}

void Complaints::NoteUnmapped(std::uint32_t offset) {
  unmapped_.set(offset);
  collected_ = any_ = true;
}

void Complaints::ReportAtOnce(const std::string& text) {
  any_ = true;
  Flush();
  ReportComplaint(text);
}

void Complaints::Flush() {
  if (!std::exchange(collected_, false)) return;
  const auto offsets = std::exchange(unmapped_, {});
  UnmappedReport report;
  for (std::size_t first = 0; first < offsets.size(); ++first) {
    if (!offsets[first]) continue;
    std::size_t last = first;
    while (last + 1 < offsets.size() && offsets[last + 1]) ++last;
    report.Add(first, last);
    first = last;
  }
}

}  // namespace board
