// The memory device through which the board's registers are reached.
#pragma once

namespace monitor {

/// Opens the memory device for reading and writing; false when it cannot be opened.
bool DeviceOpen();

/// Maps the register window at its fixed address; what the mapping call returned.
void* DeviceMapWindow();

}  // namespace monitor
