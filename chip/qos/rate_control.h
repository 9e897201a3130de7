// The rate control of the model's queues as plain storage.
#pragma once

#include "chip/register_file.h"

namespace chip {

void DefineRateControl(RegisterFile& registers);

}  // namespace chip
