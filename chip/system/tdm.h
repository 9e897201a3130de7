// The TDM timer of the model: plain storage.
#pragma once

#include "chip/register_file.h"

namespace chip {

void DefineTdm(RegisterFile& registers);

}  // namespace chip
