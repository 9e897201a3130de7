// The station addresses of the model: plain storage.
#pragma once

#include "chip/register_file.h"

namespace chip {

void DefineStationAddresses(RegisterFile& registers);

}  // namespace chip
