#pragma once

namespace monitor {

/// The monitor: prints the banner, then reads and runs command lines until `exit`; always 0.
/// Between characters it lets the packet service take received frames. Called once.
int RunShell();

}  // namespace monitor
