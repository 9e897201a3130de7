// Paths through a driver operation on hardware that answers arbitrarily.
//
// A model of an operation runs first. It says which accesses the operation makes and what the
// chip answers, and so writes the path; where a decision hangs on an answer it branches. Then the
// driver runs and has to follow the path to its end: any other access, value, order or lock is a
// failure. This is repeated until every branch has been taken.
//
// Offsets and values in the models are literal, and none of the drivers' constants, tables and
// helpers is used in them. An operation that never ends cannot follow a path.
#pragma once

#include <cstdint>
#include <string>

namespace hostile {

// Accesses, called by the models. A load answers junk, another at each load, except for the bits in
// `branch`: those take all their values on different paths, and are all set on the first one, or
// as in `first`.
std::uint8_t R8(std::uint32_t offset, std::uint8_t branch = 0);
std::uint8_t R8(std::uint32_t offset, std::uint8_t branch, std::uint8_t first);
std::uint16_t R16(std::uint32_t offset, std::uint16_t branch = 0);
std::uint32_t R32(std::uint32_t offset);
void W8(std::uint32_t offset, std::uint32_t value);
void W16(std::uint32_t offset, std::uint32_t value);
void W32(std::uint32_t offset, std::uint32_t value);

// Frame buffer memory, by bus address. Map answers both ways.
bool Map(std::uint16_t base);
std::uint8_t M8(std::uint32_t address);
std::uint16_t M16(std::uint32_t address);
void MW8(std::uint32_t address, std::uint32_t value);
void MW16(std::uint32_t address, std::uint32_t value);

// A load that answers `value`.
std::uint8_t R8Is(std::uint32_t offset, std::uint8_t value);
std::uint16_t R16Is(std::uint32_t offset, std::uint16_t value);
std::uint8_t M8Is(std::uint32_t address, std::uint8_t value);
std::uint16_t M16Is(std::uint32_t address, std::uint16_t value);

// A load of a word that is compared with `value`: equal to it, different, and different in one
// bit; the first path has `first_equal`.
bool Equals16(std::uint32_t offset, std::uint16_t value, bool first_equal);
bool Equals32(std::uint32_t offset, std::uint32_t value, bool first_equal);

void Lock();
void Unlock();

/// What was printed is handed to the output.
void Flush();

/// That many loads, whose answers do not matter.
void Delay(std::uint32_t offset, unsigned loads);

/// A wait without a limit: loads until the bit `done` is set, while the other bits in `status`
/// answer as they like. It is set by the fourth load, or never: then the operator looks in at the
/// 100,000th load; false when the operator gives up.
bool Await(std::uint32_t offset, std::uint8_t done, std::uint8_t status);

// Waits with a limit of `loads` loads; false when the bits `done` were never all set together.
// They are by the fourth load, or at the very last, or never. At Await16Twice each look is two
// loads, of which the first counts.
bool AwaitLimited(std::uint32_t offset, std::uint8_t done, unsigned loads);
bool Await16Twice(std::uint32_t offset, std::uint16_t done, unsigned looks);

/// One of 0 to n - 1, all of them on different paths, 0 on the first.
unsigned Choose(unsigned n);

/// Whether Choose is 0 for a while, for what leads to the operation in question.
void Quiet(bool quiet);

/// Begins a part of a long operation: the number of parts that answer otherwise than on the first
/// path is limited.
void Part();

/// Junk that does not branch.
std::uint32_t Random();

// Walking all paths of one operation with given arguments; see explore.h.

inline constexpr unsigned kAllParts = ~0U;

/// Forgets earlier choices. The junk is the same in every run of a test.
void BeginExploration(unsigned parts);

/// The model is to write a path: the first one, or the one that NextPath has come to.
void BeginPath();

/// The driver has followed the path: empty, or how it left it.
[[nodiscard]] std::string EndPath();

/// Goes on to the next path; false when there is none.
[[nodiscard]] bool NextPath();

/// The choices of the path, for messages.
[[nodiscard]] std::string Choices();

}  // namespace hostile
