// The forwarding controls of the model: switches, PPP mode and MTU as plain storage.
#pragma once

#include "chip/register_file.h"

namespace chip {

/// All but the filter control byte, which the tables share.
void DefineForwardControl(RegisterFile& registers);

}  // namespace chip
