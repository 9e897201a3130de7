// The kernel's side of a console whose system calls the linker redirects here (--wrap): input that
// arrives in pieces, calls that are interrupted or refused, output that is taken piece by piece.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace fuzz {

/// The console's descriptors; calls for others go to the real kernel.
inline constexpr int kInput = 1000;
inline constexpr int kOutput = 1001;

struct Kernel {
  std::span<const std::uint8_t> answers;
  std::size_t answered = 0;
  bool read_refused = false;
  bool write_refused = false;
  bool wait_refused = false;

  bool terminal = true;
  bool ended = false;    ///< No more keys will be typed.
  bool looked = false;   ///< The program has read, or asked whether it can.
  std::string typed;     ///< All of it,
  std::size_t read = 0;  ///< of which so much has been read.
  std::string written;

  [[nodiscard]] bool Readable() const { return ended || read != typed.size(); }

  /// How many of `count` characters this call moves; 0: it fails with errno set. No call is refused
  /// twice in a row, as programs may retry until it succeeds.
  std::size_t Moves(std::size_t count, bool& refused);
};

extern Kernel g_kernel;

}  // namespace fuzz
