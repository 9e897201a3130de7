#pragma once

#include <bitset>

#include "chip/register_file.h"

namespace board {

/// Reports what the chip complains about, once for each place. Offsets without a register are
/// collected, as one command may touch thousands of them.
class Complaints {
 public:
  explicit Complaints(chip::RegisterFile& registers);
  ~Complaints() { Flush(); }
  Complaints(const Complaints&) = delete;
  Complaints& operator=(const Complaints&) = delete;

  /// Reports what has been collected, neighbouring offsets as one range. To be called when a
  /// command has ended and before a wait.
  void Flush();

  /// True once there has been a complaint.
  [[nodiscard]] bool Any() const { return any_; }

 private:
  void NoteUnmapped(std::uint32_t offset);
  void ReportAtOnce(const std::string& text);

  std::bitset<chip::RegisterFile::kSize> unmapped_;  ///< Those to report.
  bool collected_ = false;
  bool any_ = false;
};

}  // namespace board
