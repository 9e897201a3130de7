// The memory controller of the model: registers that hold what is stored.
#pragma once

#include "chip/register_file.h"

namespace chip {

class ChipSelects {
 public:
  explicit ChipSelects(RegisterFile& registers);
  ChipSelects(const ChipSelects&) = delete;
  ChipSelects& operator=(const ChipSelects&) = delete;

  /// Power-on state of these registers alone.
  void Reset();

 private:
  RegisterFile& registers_;
};

}  // namespace chip
