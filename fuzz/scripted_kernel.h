// The kernel's side of a console whose system calls the linker has turned to it (--wrap): input
// that arrives in pieces, calls that are interrupted or refused, output that is taken bit by bit.
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
  bool ended = false;    ///< Nobody types any more.
  bool looked = false;   ///< The program has asked for something to read or whether there is.
  std::string typed;     ///< All of it,
  std::size_t read = 0;  ///< of which so much has been read.
  std::string written;

  [[nodiscard]] bool Readable() const { return ended || read != typed.size(); }

  /// How many of `count` characters this call moves; 0: it fails with errno set. No call is refused
  /// twice in a row, as programs may try again for as long as it is.
  std::size_t Moves(std::size_t count, bool& refused);
};

extern Kernel g_kernel;

}  // namespace fuzz
