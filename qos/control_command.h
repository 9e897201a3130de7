// The chip-wide forwarding switches, PPP mode and MTU on the console. Their registers belong to
// the forwarding-control record.
#pragma once

#include "console/command.h"

namespace monitor {

/// The `ctrl` command.
int ControlCommand(int argc, ArgVector argv);

}  // namespace monitor
