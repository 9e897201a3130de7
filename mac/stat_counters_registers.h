#pragma once

#include <array>

#include "core/engine_fields.h"
#include "core/value_names.h"

namespace monitor {

inline constexpr Reg32 kStatOverflow{0x850, "SC_OVERFLOW",
                                     "loads: bit i set when counter i overflowed; 1 clears"};
inline constexpr Reg32 kStatWordB{0x854, "SC_WORD_B", "second data word of the group"};
inline constexpr Reg32 kStatWordA{0x858, "SC_WORD_A", "first data word of the group"};
inline constexpr Reg8 kStatCommand{0x85C, "SC_COMMAND", "engine command and status"};
inline constexpr Reg8 kStatSelector{0x85D, "SC_SELECTOR", "what a step works on"};
inline constexpr Field kStatPort{4, 3, "port", "port"};
inline constexpr Field kStatGroup{2, 0, "group", "counters packed into the same two words"};

inline constexpr ValueName kStatPortNames[] = {
    {0, "wan", "WAN"},
    {1, "lan", "LAN"},
    {2, "dmz", "DMZ"},
};

inline constexpr RegisterRow kStatCounterRegisters[] = {
    {kStatOverflow, ValueKind::kBits},
    kStatWordB,
    kStatWordA,
    {kStatCommand,
     {{kEngineWrite, kDirectionNames}, kEngineStart, kEngineWriteReady, kEngineReadReady}},
    {kStatSelector,
     {{kStatPort, {ValueKind::kPort, kStatPortNames}}, {kStatGroup, ValueKind::kIndex}}},
};

inline constexpr unsigned kStatGroups = 8;

enum class StatWord : std::uint8_t { kA, kB };

/// Where a counter is kept: the group, the word, and in that word `width` bits starting at
/// byte `first_byte`, byte 0 being the most significant.
struct StatCounterRow {
  const char* name;
  unsigned group;
  StatWord word;
  unsigned first_byte;
  unsigned width;

  /// The counter's bits in its word.
  [[nodiscard]] constexpr Field Slice() const {
    return {31 - 8 * first_byte, 32 - 8 * first_byte - width};
  }
};

/// In index order; the index is also the counter's bit in the overflow mask.
// clang-format off
inline constexpr std::array<StatCounterRow, 28> kStatCounterRows{{
    {"SC_BYTESENT",          0, StatWord::kA, 0, 32},
    {"SC_UNICASTSENT",       0, StatWord::kB, 1, 24},
    {"SC_FRMSNDFAIL",        0, StatWord::kB, 0,  8},
    {"SC_FLWCTRLFRMSENT",    1, StatWord::kA, 2, 16},
    {"SC_NONUNICASTSENT",    1, StatWord::kA, 0, 16},
    {"SC_BYTERECV",          1, StatWord::kB, 0, 32},
    {"SC_FRAMERECV",         2, StatWord::kA, 0, 32},
    {"SC_TOTALBYTERECV",     2, StatWord::kB, 0, 32},
    {"SC_TOTALFRMRECV",      3, StatWord::kA, 1, 24},
    {"SC_FLWCTRLRECV",       3, StatWord::kA, 0,  8},
    {"SC_MCASTFRMRECV",      3, StatWord::kB, 2, 16},
    {"SC_BCASTFRMRECV",      3, StatWord::kB, 0, 16},
    {"SC_FRM64BYTE",         4, StatWord::kA, 1, 24},
    {"SC_JABBEROVRFRM",      4, StatWord::kA, 0,  8},
    {"SC_FRM65TO127BYTE",    4, StatWord::kB, 1, 24},
    {"SC_OVERSIZEFRM",       4, StatWord::kB, 0,  8},
    {"SC_FRM128TO255BYTE",   5, StatWord::kA, 2, 16},
    {"SC_FRM256TO511BYTE",   5, StatWord::kA, 0, 16},
    {"SC_FRM512TO1023BYTE",  5, StatWord::kB, 2, 16},
    {"SC_FRM1024TO1528BYTE", 5, StatWord::kB, 0, 16},
    {"SC_FRAGMENT",          6, StatWord::kA, 2, 16},
    {"SC_ALIGNMENTERR",      6, StatWord::kA, 1,  8},
    {"SC_UNDERSIZEFRM",      6, StatWord::kA, 0,  8},
    {"SC_CRC",               6, StatWord::kB, 2, 16},
    {"SC_SHORTEVENT",        6, StatWord::kB, 0, 16},
    {"SC_COLLISION",         7, StatWord::kA, 2, 16},
    {"SC_DROP",              7, StatWord::kA, 0, 16},
    {"SC_LATECOLLISION",     7, StatWord::kB, 0,  8},
}};
// clang-format on

}  // namespace monitor
