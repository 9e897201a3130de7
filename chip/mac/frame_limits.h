// How long a frame may be, in bytes without its FCS.
#pragma once

#include <cstddef>

#include "mac/frame_registers.h"

namespace chip {

/// The longest frame that a MAC takes or sends.
inline constexpr std::size_t kLongestFrame = 1524;

/// The longest frame that fits a buffer after its header; more than a MAC takes.
inline constexpr unsigned kLongestBufferedFrame = monitor::kBufferSize - monitor::kBufferHeaderSize;

/// Room for whatever a port is given from outside, so that too long a frame is seen as such.
inline constexpr std::size_t kLongestRead = 4096;

}  // namespace chip
