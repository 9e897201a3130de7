// The port configuration of the model: plain storage.
#pragma once

#include <functional>

#include "chip/register_file.h"

namespace chip {

/// `on_control` is called when a port's control byte has been stored: the port may be up now.
void DefinePortConfig(RegisterFile& registers, std::function<void()> on_control);

}  // namespace chip
