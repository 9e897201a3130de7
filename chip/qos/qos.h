// The quality-of-service settings of the model as plain storage.
#pragma once

#include "chip/register_file.h"

namespace chip {

void DefineQos(RegisterFile& registers);

}  // namespace chip
