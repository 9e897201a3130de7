// What can be made to fail, and how.
#pragma once

#include <cstdint>

namespace chip {

/// What an engine does instead of working, so that failures can be tested.
struct Fault {
  enum class Kind : std::uint8_t {
    kNone,
    kHang,  ///< Operations never complete.
    kBusy,  ///< The ready bits read as 0.
    kSlow,  ///< An operation takes `loads` loads of the status, at least one.
    kFail,  ///< Operations complete without effect; a result bit says so where there is one.
  };
  Kind kind = Kind::kNone;
  unsigned loads = 0;
};

/// Something that can be made to fail.
class FaultPoint {
 public:
  virtual ~FaultPoint() = default;

  /// What faults are set by, as in "l3"; no other fault point has the same.
  [[nodiscard]] virtual const char* Name() const = 0;

  /// The fault lasts until the next one, through resets.
  virtual void SetFault(const Fault& fault) = 0;
};

}  // namespace chip
