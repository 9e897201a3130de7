// Events of a path, between path.cpp, where models write them, and socket.cpp, through which
// drivers follow them.
#pragma once

#include <cstdint>

namespace hostile {

enum class Kind : std::uint8_t {
  kLoad8,
  kLoad16,
  kLoad32,
  kStore8,
  kStore16,
  kStore32,
  kMemoryLoad8,
  kMemoryLoad16,
  kMemoryStore8,
  kMemoryStore16,
  kMap,
  kLock,
  kUnlock,
  kFlush,
  kLook,  ///< WaitInterrupted.
};

/// The driver does something; the answer of a load, Map or look. Junk when the driver has left
/// the path.
std::uint32_t OnEvent(Kind kind, std::uint32_t address = 0, std::uint32_t value = 0);

}  // namespace hostile
